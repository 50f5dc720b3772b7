#include "calls.h"

#include <complex>
#include <span>
#include <string_view>
#include <variant>

#include "arrays.h"
#include "conversion.h"
#include "cores.h"
#include "stack.h"
#include "turns.h"

namespace undula {
namespace {

// The result of a call, or why there is none.
using Outcome = std::variant<Value, ErrorValue>;

ErrorValue errorValue(const efihost::Error& error) {
    return {error.message(), error.argument()};
}

Outcome outcomeOf(const Value& result) {
    if (result.isError()) {
        return ErrorValue{result.message(), result.argument()};
    }
    return result;
}

Outcome callInTurn(const Function& function, const std::vector<Value>& arguments) {
    const LockReleased unlocked;
    const auto turn = takeTurn();
    try {
        return outcomeOf(host().callRaw(function, arguments));
    } catch (const efihost::Error& error) {
        return errorValue(error);
    }
}

// The letters belong to the tuple.
std::string_view textAt(const py::tuple& texts, std::size_t index) {
    if (index >= texts.size()) {
        return {};
    }
    py::ssize_t size = 0;
    const char* letters = PyUnicode_AsUTF8AndSize(PyTuple_GET_ITEM(texts.ptr(), index), &size);
    if (letters == nullptr) {
        throwPending();
    }
    return {letters, static_cast<std::size_t>(size)};
}

std::vector<Value> valuesOf(const Function& function, const py::tuple& arguments, const py::tuple& names,
                            Lent& lent) {
    requireStack();
    std::vector<Value> values;
    values.reserve(arguments.size());
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const Place place = {.function = function.name, .index = i, .name = textAt(names, i)};
        values.push_back(toHost(arguments[i], place, &lent));
    }
    return values;
}

// An argument that differs in each of many calls. One of the two is null.
struct Varying {
    std::size_t place;
    const double* reals;
    const std::complex<double>* complexes;

    std::complex<double> operator[](std::size_t i) const {
        return reals != nullptr ? reals[i] : complexes[i];
    }
};

template <class Number>
const Number* numbersIn(const py::array& array) {
    const bool fits = py::array_t<Number, py::array::c_style>::check_(array);
    return fits ? static_cast<const Number*>(array.data()) : nullptr;
}

Varying varying(std::size_t place, const py::array& array) {
    const Varying result = {place, numbersIn<double>(array), numbersIn<std::complex<double>>(array)};
    if (result.reals == nullptr && result.complexes == nullptr) {
        throw py::type_error("an array of other numbers than float64 and complex128, or with gaps");
    }
    return result;
}

void requireDoubles(const py::array& array, int dimensions) {
    const bool isAligned = (array.flags() & py::detail::npy_api::NPY_ARRAY_ALIGNED_) != 0;
    if (!py::isinstance<py::array_t<double>>(array) || !isAligned || dimensions < 1 || dimensions > 2 ||
        array.ndim() < dimensions) {
        throw py::type_error("not an aligned array of float64 with one or two dimensions to call for");
    }
}

// Makes calls in one turn, so that no other thread selects another wavelet meanwhile. Those of functions
// that do not poll can be interrupted between calls. Returns the first error.
template <class Prepare, class Take>
std::optional<ErrorValue> callSeriesInTurn(const Function& function, std::size_t count, Prepare prepare,
                                           Take take) {
    const LockReleased unlocked;
    const auto turn = takeTurn();
    std::size_t current = 0;
    std::optional<ErrorValue> error;
    try {
        host().callSeries(
            function, count,
            [&](std::size_t i) {
                checkInterrupt();
                current = i;
                return prepare(i);
            },
            [&](std::size_t i, const Value& result) {
                if (result.isError()) {
                    error = {result.message(), result.argument(), i};
                } else {
                    take(i, result);
                }
                return !error;
            });
    } catch (const efihost::Error& refusal) {
        error = {refusal.message(), refusal.argument(), current};
    }
    return error;
}

}  // namespace

py::object call(const Function& function, const py::tuple& arguments, const py::tuple& names) {
    Lent lent;
    const std::vector<Value> values = valuesOf(function, arguments, names, lent);
    const Outcome outcome = callInTurn(function, values);
    if (const auto* error = std::get_if<ErrorValue>(&outcome)) {
        return py::cast(*error);
    }
    return py::reinterpret_steal<py::object>(toPython(std::get<Value>(outcome), &lent).release());
}

py::object callMany(const Function& function, const py::tuple& arguments, const py::tuple& names,
                    const std::vector<std::size_t>& places, const std::vector<py::array>& arrays) {
    Lent lent;
    std::vector<Value> values = valuesOf(function, arguments, names, lent);
    std::vector<Varying> replaced;
    for (std::size_t i = 0; i < places.size(); ++i) {
        replaced.push_back(varying(places.at(i), arrays.at(i)));
    }
    py::array_t<double> results(arrays.at(0).size());
    double* const out = results.mutable_data();
    const auto error = callSeriesInTurn(
        function, static_cast<std::size_t>(results.size()),
        [&](std::size_t i) -> std::span<const Value> {
            for (const Varying& each : replaced) {
                values[each.place].setScalar(each[i]);
            }
            return values;
        },
        [out](std::size_t i, const Value& result) { out[i] = result.real(); });
    return error ? py::cast(*error) : results;
}

py::object callAlong(const Function& function, const py::tuple& arguments, const py::tuple& names,
                     std::size_t place, const py::array& data, int dimensions) {
    requireDoubles(data, dimensions);
    Lent lent;
    std::vector<Value> values = valuesOf(function, arguments, names, lent);
    Value& varied = values.at(place);
    Cores cores(data, dimensions);
    CoreResults results(cores.outerShape(), dimensions);
    const auto error = callSeriesInTurn(
        function, cores.count(),
        [&](std::size_t i) -> std::span<const Value> {
            varied = cores.at(i);
            results.expect(i);
            return values;
        },
        [&](std::size_t i, const Value& result) { results.put(i, result); });
    return error ? py::cast(*error) : results.array();
}

}  // namespace undula
