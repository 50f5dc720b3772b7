// A Python callable as a user function. What it raises passes through the host as a C++ exception,
// which the host keeps from unwinding the pack.
#include <cmath>
#include <string>
#include <string_view>
#include <vector>

#include "conversion.h"

namespace undula {

std::shared_ptr<PyObject> keep(py::handle object) {
    return {object.inc_ref().ptr(), [](PyObject* kept) {
                const LockHeld lock;
                askingForLock([kept] { Py_DECREF(kept); });
            }};
}

namespace {

// The place of an argument, for as long as the function lives.
struct Argument {
    std::string_view function;
    std::size_t index;
    std::string name;

    explicit Argument(const Place& place) : function(place.function), index(place.index), name(place.name) {}
    Place place(bool isResult) const {
        return {.function = function, .index = index, .name = name, .isResult = isResult};
    }
};

// What a callable returns for values of the host. The interpreter lock is held.
Reference resultFor(py::handle callable, const std::vector<Value>& arguments) {
    const auto count = static_cast<py::ssize_t>(arguments.size());
    const Reference converted = newReference([=] { return PyTuple_New(count); });
    for (py::ssize_t i = 0; i < count; ++i) {
        PyTuple_SET_ITEM(converted.get(), i, toPython(arguments[static_cast<std::size_t>(i)]).release());
    }
    return callPython(callable, converted);
}

// A result as a number; the usual one without ado.
Value numberOf(const Reference& result, const Argument& function) {
    if (PyFloat_CheckExact(result.get())) {
        return PyFloat_AS_DOUBLE(result.get());
    }
    Value value = toHost(result, function.place(true));
    if (!value.isScalar()) {
        throw py::type_error(function.place(false).text() + " must return one number, not " +
                             Py_TYPE(result.get())->tp_name);
    }
    return value;
}

}  // namespace

Value userFunction(py::handle callable, const Place& place) {
    const auto function = [callable = keep(callable),
                           argument = Argument(place)](const std::vector<Value>& arguments) {
        const LockHeld lock;
        return toHost(resultFor(callable.get(), arguments), argument.place(true));
    };
    return Value::function(efihost::Callback(function));
}

Value wrappedFunction(py::handle object, const Place& place) {
    auto* const wrapper = object.cast<UserFunction*>();
    if (!wrapper->wantsNumber) {
        return userFunction(wrapper->callable, place);
    }
    const auto function = [kept = keep(object), wrapper,
                           argument = Argument(place)](const std::vector<Value>& arguments) {
        const LockHeld lock;
        Value value = numberOf(resultFor(wrapper->callable, arguments), argument);
        wrapper->metNan = wrapper->metNan || std::isnan(value.real());
        return value;
    };
    return Value::function(efihost::Callback(function));
}

}  // namespace undula
