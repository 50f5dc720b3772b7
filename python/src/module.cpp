// The extension undula._host: loads a pack and calls its functions.
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#if !defined(_WIN32)
#include <pthread.h>
#endif

#include <chrono>
#include <complex>
#include <ctime>
#include <optional>
#include <stdexcept>
#include <string>
#include <variant>
#include <vector>

#include "arrays.h"
#include "conversion.h"
#include "costs.h"
#include "efihost/host.h"
#include "stack.h"

namespace undula {
namespace {

using efihost::CallLock;
using efihost::Function;
using efihost::Host;

// An error value as the result of a call.
struct ErrorValue {
    std::string message;
    int argument;
    std::optional<std::size_t> element = std::nullopt;  // which of many calls has failed
};

// The result of a call, or why there is none.
using Outcome = std::variant<Value, ErrorValue>;

// Of a clock that is a few milliseconds behind, but quickly read where there is such a clock.
std::chrono::nanoseconds roughTime() {
#if defined(CLOCK_MONOTONIC_COARSE)
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
    return std::chrono::seconds(now.tv_sec) + std::chrono::nanoseconds(now.tv_nsec);
#else
    return std::chrono::steady_clock::now().time_since_epoch();
#endif
}

// Returns false, or raises what the handler of a pending signal raises, such as KeyboardInterrupt.
// Packs poll often and taking the interpreter lock is slow, so most polls only look at the clock.
bool checkInterrupt() {
    constexpr auto period = std::chrono::milliseconds(20);
    static std::chrono::nanoseconds next{};  // guarded by the lock that every call holds
    const auto now = roughTime();
    if (now < next) {
        return false;
    }
    next = now + period;
    const LockHeld lock;
    checkSignals();
    return false;
}

// Never destroyed: at the end of the process a thread may still be in a call.
Host* theHost = nullptr;

void makeHost() {
    theHost = new Host;
    theHost->setInterrupt(checkInterrupt);
}

// After a fork during a call of another thread, the host is as that call has left it.
[[maybe_unused]] void renewHost() {
    if (!CallLock::instance().isMine()) {
        makeHost();
    }
}

// A thread waits for its turn without the interpreter lock, which the thread that has the turn may need
// for a user function, and has the handlers of signals called meanwhile. While the interpreter ends
// nothing waits, as that thread may sleep for ever.
std::unique_lock<CallLock> takeTurn() {
    constexpr auto period = std::chrono::milliseconds(20);
    std::unique_lock turn(CallLock::instance(), std::try_to_lock);
    while (!turn) {
        if (interpreterEnds()) {
            throw std::runtime_error("undula: another thread is in a call while the interpreter ends");
        }
        if (!turn.try_lock_for(period)) {
            const LockHeld lock;
            checkSignals();
        }
    }
    return turn;
}

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
        return outcomeOf(theHost->callRaw(function, arguments));
    } catch (const efihost::Error& error) {
        return errorValue(error);
    }
}

std::string textAt(const py::tuple& texts, std::size_t index) {
    return index < texts.size() ? py::cast<std::string>(texts[index]) : "";
}

std::vector<Value> valuesOf(const Function& function, const py::tuple& arguments, const py::tuple& names,
                            Lent& lent) {
    requireStack();
    std::vector<Value> values;
    values.reserve(arguments.size());
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const Place place = {function.name, i, textAt(names, i)};
        values.push_back(toHost(arguments[i], place, &lent));
    }
    return values;
}

py::object call(const Function& function, const py::tuple& arguments, const py::tuple& names) {
    Lent lent;
    const std::vector<Value> values = valuesOf(function, arguments, names, lent);
    const Outcome outcome = callInTurn(function, values);
    if (const auto* error = std::get_if<ErrorValue>(&outcome)) {
        return py::cast(*error);
    }
    return py::reinterpret_steal<py::object>(toPython(std::get<Value>(outcome), &lent).release());
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

// Makes calls in one turn, so that no other thread selects another wavelet meanwhile. Those of functions
// that do not poll can be interrupted between calls. Returns the first error.
template <class Arguments, class Take>
std::optional<ErrorValue> callSeriesInTurn(const Function& function, std::size_t count, Arguments arguments,
                                           Take take) {
    const LockReleased unlocked;
    const auto turn = takeTurn();
    std::size_t current = 0;
    std::optional<ErrorValue> error;
    try {
        theHost->callSeries(
            function, count,
            [&](std::size_t i) {
                checkInterrupt();
                current = i;
                return arguments(i);
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

// The arrays replace the arguments at the places.
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

void define(py::module_& module) {
    module.attr("__version__") = UNDULA_VERSION;
    module.attr("fourier_engine") = efihost::fourierEngine();
    module.def("live_values", &efihost::liveValues, "How many values of the host exist.");

    py::class_<ErrorValue>(module, "ErrorValue", "The result of a call that has failed.")
        .def_readonly("message", &ErrorValue::message)
        .def_readonly("argument", &ErrorValue::argument)
        .def_readonly("element", &ErrorValue::element);

    py::class_<UserFunction>(module, "UserFunction",
                             "A callable where a function is wanted, whatever else it is.")
        .def(py::init([](py::object callable, bool wantsNumber) {
                 return UserFunction{std::move(callable), wantsNumber};
             }),
             py::arg("callable"), py::arg("wants_number"))
        .def_readonly("met_nan", &UserFunction::metNan, "Whether a number that it has returned was NaN.");

    py::class_<Function>(module, "Function", "A row of a pack's table.")
        .def_property_readonly("name", [](const Function& function) { return std::string(function.name); })
        .def_readonly("arity", &Function::arity, "The number of arguments; None where it varies.")
        .def("call", &call, py::arg("arguments"), py::arg("names"),
             "Calls the function; `names` are the arguments' names for messages, where there are any.")
        .def("call_many", &callMany, py::arg("arguments"), py::arg("names"), py::arg("places"),
             py::arg("arrays"),
             "Calls a function whose result is a real number for each element of equally long arrays, "
             "which are the arguments at the places; returns the results as an array.");

    exposeCosts(module);

    module.def(
        "load", [](const std::string& path) { return efihost::Pack(path).functions(); }, py::arg("path"),
        "Loads a pack; returns its functions in the order of its table.");
}

// Called once, while the module is imported.
void prepare() {
    prepareArrays();
    makeHost();
#if !defined(_WIN32)
    pthread_atfork(nullptr, nullptr, &renewHost);
#endif
}

}  // namespace
}  // namespace undula

namespace py = pybind11;

// What PYBIND11_MODULE makes, but for sub-interpreters, where that waits for ever.
extern "C" PYBIND11_EXPORT PyObject* PyInit__host() {
    if (PyInterpreterState_Get() != PyInterpreterState_Main()) {
        PyErr_SetString(PyExc_ImportError, "undula cannot be imported in a sub-interpreter");
        return nullptr;
    }
    try {
        py::detail::get_internals();
        static py::module_::module_def definition;
        py::module_ module = py::module_::create_extension_module("_host", nullptr, &definition);
        undula::prepare();
        undula::define(module);
        return module.ptr();
    } catch (py::error_already_set& error) {
        error.restore();
    } catch (const std::exception& error) {
        PyErr_SetString(PyExc_ImportError, error.what());
    }
    return nullptr;
}
