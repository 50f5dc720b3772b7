// The extension undula._host: loads a pack and calls its functions.
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "conversion.h"
#include "efihost/host.h"

namespace undula {
namespace {

using efihost::Function;
using efihost::Host;

// An error value as the answer of a call.
struct ErrorValue {
    std::string message;
    int argument;
};

// Answers false or raises what the handler of a pending signal raises, such as KeyboardInterrupt.
// Packs poll often, and taking the interpreter lock is slow: most polls only look at the clock.
bool checkSignals() {
    using Clock = std::chrono::steady_clock;
    constexpr auto period = std::chrono::milliseconds(20);
    static Clock::time_point next;  // guarded by the lock that every call holds
    const auto now = Clock::now();
    if (now < next) {
        return false;
    }
    next = now + period;
    const py::gil_scoped_acquire interpreter;
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

// A thread waits for its turn without the interpreter lock, which whoever has the turn may need
// for a user function.
Value callInTurn(const Function& function, const std::vector<Value>& arguments) {
    const py::gil_scoped_release interpreter;
    const auto turn = Host::lock();
    return host().callRaw(function, arguments);
}

std::string placeOf(const Function& function, std::size_t index, const py::tuple& names) {
    std::string place = std::string(function.name) + ": argument " + std::to_string(index + 1);
    if (index < names.size()) {
        place += " (" + py::str(names[index]).cast<std::string>() + ")";
    }
    return place;
}

py::object call(const Function& function, const py::tuple& arguments, const py::tuple& names) {
    Lent lent;
    std::vector<Value> values;
    values.reserve(arguments.size());
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        values.push_back(toHost(arguments[i], placeOf(function, i, names), &lent));
    }
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

}  // namespace

PYBIND11_MODULE(_host, module) {
    module.attr("__version__") = UNDULA_VERSION;
    module.def("live_values", &efihost::liveValues, "How many values of the host exist.");

    py::class_<ErrorValue>(module, "ErrorValue", "The answer of a call that has failed.")
        .def_readonly("message", &ErrorValue::message)
        .def_readonly("argument", &ErrorValue::argument);

    py::class_<Function>(module, "Function", "A row of a pack's table.")
        .def_property_readonly("name", [](const Function& function) { return std::string(function.name); })
        .def_readonly("arity", &Function::arity, "The number of arguments; None where it varies.")
        .def("call", &call, py::arg("arguments"), py::arg("names"),
             "Calls the function; `names` are the arguments' names for messages, where there are any.");

    module.def(
        "load", [](const std::string& path) { return efihost::Pack(path).functions(); }, py::arg("path"),
        "Loads a pack; answers its functions in the order of its table.");
}

}  // namespace undula
