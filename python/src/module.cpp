// The extension undula._host: loads a pack and calls its functions.
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <chrono>
#include <complex>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "conversion.h"
#include "efihost/host.h"
#include "interpreter_lock.h"

namespace undula {
namespace {

using efihost::Function;
using efihost::Host;

// An error value as the result of a call.
struct ErrorValue {
    std::string message;
    int argument;
    std::optional<std::size_t> element = std::nullopt;  // which of many calls has failed
};

// Returns false, or raises what the handler of a pending signal raises, such as KeyboardInterrupt.
// Packs poll often and taking the interpreter lock is slow, so most polls only look at the clock.
bool checkSignals() {
    using Clock = std::chrono::steady_clock;
    constexpr auto period = std::chrono::milliseconds(20);
    static Clock::time_point next;  // guarded by the lock that every call holds
    const auto now = Clock::now();
    if (now < next) {
        return false;
    }
    next = now + period;
    const LockHeld lock;
    if (PyErr_CheckSignals() != 0) {
        throw py::error_already_set();
    }
    return false;
}

// Never destroyed: at the end of the process a thread may still be in a call.
Host& host() {
    static Host& instance = *[] {
        auto* made = new Host;
        made->setInterrupt(checkSignals);
        return made;
    }();
    return instance;
}

// A thread waits for its turn without the interpreter lock, which the thread that has the turn may
// need for a user function. While the interpreter ends nothing waits, as that thread may sleep for
// ever.
std::unique_lock<std::recursive_mutex> takeTurn() {
    static std::recursive_mutex& turns = *Host::lock().mutex();
    if (!interpreterEnds()) {
        return std::unique_lock(turns);
    }
    std::unique_lock turn(turns, std::try_to_lock);
    if (!turn) {
        throw std::runtime_error("undula: another thread is in a call while the interpreter ends");
    }
    return turn;
}

Value callInTurn(const Function& function, const std::vector<Value>& arguments) {
    const LockReleased unlocked;
    const auto turn = takeTurn();
    return host().callRaw(function, arguments);
}

std::string placeOf(const Function& function, std::size_t index, const py::tuple& names) {
    std::string place = std::string(function.name) + ": argument " + std::to_string(index + 1);
    if (index < names.size()) {
        place += " (" + py::str(names[index]).cast<std::string>() + ")";
    }
    return place;
}

std::vector<Value> valuesOf(const Function& function, const py::tuple& arguments, const py::tuple& names,
                            Lent& lent) {
    std::vector<Value> values;
    values.reserve(arguments.size());
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        values.push_back(toHost(arguments[i], placeOf(function, i, names), &lent));
    }
    return values;
}

py::object call(const Function& function, const py::tuple& arguments, const py::tuple& names) {
    Lent lent;
    const std::vector<Value> values = valuesOf(function, arguments, names, lent);
    try {
        const Value result = callInTurn(function, values);
        if (result.isError()) {
            return py::cast(ErrorValue{result.message(), result.argument()});
        }
        return toPython(result, &lent);
    } catch (const efihost::Error& error) {
        return py::cast(ErrorValue{error.message(), error.argument()});
    }
}

using Numbers = py::array_t<std::complex<double>, py::array::c_style>;

// An argument that differs in each of many calls.
struct Varying {
    std::size_t place;
    const std::complex<double>* numbers;
};

// The first error value, and how many calls came before it.
struct Refusal {
    Value error;
    std::size_t element;
};

// All calls are one turn, so no other thread selects another wavelet meanwhile. Functions that do not
// poll can be interrupted between calls.
std::optional<Refusal> callManyInTurn(const Function& function, std::vector<Value>& arguments,
                                      const std::vector<Varying>& varying, std::size_t count, double* out) {
    const LockReleased unlocked;
    const auto turn = takeTurn();
    for (std::size_t i = 0; i < count; ++i) {
        checkSignals();
        for (const Varying& argument : varying) {
            arguments[argument.place] = argument.numbers[i];
        }
        Value result = host().callRaw(function, arguments);
        if (result.isError()) {
            return Refusal{std::move(result), i};
        }
        out[i] = result.real();
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
    const auto refusal =
        callManyInTurn(function, values, varying, static_cast<std::size_t>(count), results.mutable_data());
    if (!refusal) {
        return results;
    }
    return py::cast(ErrorValue{refusal->error.message(), refusal->error.argument(), refusal->element});
}

}  // namespace

PYBIND11_MODULE(_host, module) {
    module.attr("__version__") = UNDULA_VERSION;
    module.attr("fourier_engine") = efihost::fourierEngine();
    module.def("live_values", &efihost::liveValues, "How many values of the host exist.");

    py::class_<ErrorValue>(module, "ErrorValue", "The result of a call that has failed.")
        .def_readonly("message", &ErrorValue::message)
        .def_readonly("argument", &ErrorValue::argument)
        .def_readonly("element", &ErrorValue::element);

    py::class_<Function>(module, "Function", "A row of a pack's table.")
        .def_property_readonly("name", [](const Function& function) { return std::string(function.name); })
        .def_readonly("arity", &Function::arity, "The number of arguments; None where it varies.")
        .def("call", &call, py::arg("arguments"), py::arg("names"),
             "Calls the function; `names` are the arguments' names for messages, where there are any.")
        .def("call_many", &callMany, py::arg("arguments"), py::arg("names"), py::arg("places"),
             py::arg("arrays"),
             "Calls a function whose result is a real number for each element of equally long arrays, "
             "which are the arguments at the places; returns the results as an array.");

    module.def(
        "load", [](const std::string& path) { return efihost::Pack(path).functions(); }, py::arg("path"),
        "Loads a pack; returns its functions in the order of its table.");
}

}  // namespace undula
