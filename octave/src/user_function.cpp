// A function handle as a user function. An error in it passes through the host as a C++ exception, which
// the host keeps from unwinding the pack.
#include <octave/interpreter.h>
#include <octave/ov-fcn-handle.h>
#include <octave/parse.h>

#include <utility>
#include <vector>

#include "conversion.h"

namespace undula {
namespace {

octave_value resultOf(const octave_value& function, const std::vector<Value>& arguments, const Place& place,
                      bool asRows) {
    octave_value_list given(static_cast<octave_idx_type>(arguments.size()));
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        given(static_cast<octave_idx_type>(i)) = toOctave(Value(arguments[i]), asRows);
    }
    const octave_value_list results = octave::feval(function, given, 1);
    if (results.empty() || results(0).is_undefined()) refuse(place, "is none: the function returns nothing");
    return results(0);
}

// The pack takes for 0 what is no number.
Value numberOf(const octave_value& result, const Place& place) {
    if (result.is_real_scalar()) return result.double_value();
    Value value = toHost(result, place, Role::Plain);
    if (!value.isScalar()) refuse(place, "must be one number");
    return value;
}

// A packet of one coefficient is a number in Octave; what is made of it is an array all the same.
Role roleOfResult(Role function, const std::vector<Value>& arguments) {
    if (arguments.empty() || !arguments[0].isMatrix() || arguments[0].cols() != 1) return Role::Plain;
    return function == Role::PacketMap && arguments[0].rows() == 1 ? Role::Array : Role::Plain;
}

Value packetOf(const octave_value& result, const Place& place, Role role,
               const std::vector<Value>& arguments) {
    const bool isOfSignal = !arguments.empty() && arguments[0].isMatrix() && arguments[0].cols() == 1;
    if (isOfSignal && isRow(result)) return toHost(result, place, Role::Signal);
    return toHost(result, place, roleOfResult(role, arguments));
}

}  // namespace

Value userFunction(const octave_value& function, const Place& place, Role role, bool asRows) {
    Place ofResult = place;
    ofResult.isResult = true;
    const auto callback = [=](const std::vector<Value>& arguments) {
        const octave_value result = resultOf(function, arguments, ofResult, asRows);
        return role == Role::NumberFunction ? numberOf(result, ofResult)
                                            : packetOf(result, ofResult, role, arguments);
    };
    return Value::function(efihost::Callback(callback));
}

}  // namespace undula
