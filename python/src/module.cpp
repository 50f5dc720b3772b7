// The extension undula._host: loads a pack and calls its functions.
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#if !defined(_WIN32)
#include <pthread.h>
#endif

#include <chrono>
#include <complex>
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

// Returns false, or raises what the handler of a pending signal raises, such as KeyboardInterrupt.
// Packs poll often and taking the interpreter lock is slow, so most polls only look at the clock.
bool checkInterrupt() {
    using Clock = std::chrono::steady_clock;
    constexpr auto period = std::chrono::milliseconds(20);
    static Clock::time_point next;  // guarded by the lock that every call holds
    const auto now = Clock::now();
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

Outcome outcomeOf(const Function& function, const std::vector<Value>& arguments) {
    try {
        Value result = theHost->callRaw(function, arguments);
        if (result.isError()) {
            return ErrorValue{result.message(), result.argument()};
        }
        return result;
    } catch (const efihost::Error& error) {
        return ErrorValue{error.message(), error.argument()};
    }
}

Outcome callInTurn(const Function& function, const std::vector<Value>& arguments) {
    const LockReleased unlocked;
    const auto turn = takeTurn();
    return outcomeOf(function, arguments);
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

using Numbers = py::array_t<std::complex<double>, py::array::c_style>;

// An argument that differs in each of many calls.
struct Varying {
    std::size_t place;
    const std::complex<double>* numbers;
};

// All calls are one turn, so no other thread selects another wavelet meanwhile. Functions that do not
// poll can be interrupted between calls. Returns the first error.
std::optional<ErrorValue> callManyInTurn(const Function& function, std::vector<Value>& arguments,
                                         const std::vector<Varying>& varying, std::size_t count,
                                         double* out) {
    const LockReleased unlocked;
    const auto turn = takeTurn();
    for (std::size_t i = 0; i < count; ++i) {
        checkInterrupt();
        for (const Varying& argument : varying) {
            arguments[argument.place] = argument.numbers[i];
        }
        Outcome outcome = outcomeOf(function, arguments);
        if (auto* error = std::get_if<ErrorValue>(&outcome)) {
            error->element = i;
            return std::move(*error);
        }
        out[i] = std::get<Value>(outcome).real();
    }
    return std::nullopt;
}

// The arrays replace the arguments at the places.
py::object callMany(const Function& function, const py::tuple& arguments, const py::tuple& names,
                    const std::vector<std::size_t>& places, const std::vector<Numbers>& arrays) {
    Lent lent;
    std::vector<Value> values = valuesOf(function, arguments, names, lent);
    std::vector<Varying> varying;
    for (std::size_t i = 0; i < places.size(); ++i) {
        varying.push_back({places.at(i), arrays.at(i).data()});
    }
    const py::ssize_t count = arrays.at(0).size();
    py::array_t<double> results(count);
    const auto error =
        callManyInTurn(function, values, varying, static_cast<std::size_t>(count), results.mutable_data());
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
