// The extension undula._host: loads a pack and calls its functions.
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <optional>
#include <string>
#include <vector>

#include "arrays.h"
#include "calls.h"
#include "conversion.h"
#include "costs.h"
#include "efihost/host.h"
#include "turns.h"

namespace undula {
namespace {

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
             "which are the arguments at the places; returns the results as an array.")
        .def("call_along", &callAlong, py::arg("arguments"), py::arg("names"), py::arg("place"),
             py::arg("data"), py::arg("dimensions"),
             "Calls a function whose result is an array for each signal along the last axis of an array "
             "(one dimension), or each image over its last two (two), which is the argument at the place; "
             "returns the results as an array, None if there are none.");

    exposeCosts(module);

    module.def(
        "load",
        [](const std::optional<std::string>& path) {
            return (path ? efihost::Pack(*path) : efihost::Pack()).functions();
        },
        py::arg("path") = py::none(),
        "Loads a pack, without a path the one that is installed with the host; returns its functions in the "
        "order of its table.");
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
        undula::prepareArrays();
        undula::prepareHost();
        undula::define(module);
        return module.ptr();
    } catch (py::error_already_set& error) {
        error.restore();
    } catch (const std::exception& error) {
        PyErr_SetString(PyExc_ImportError, error.what());
    }
    return nullptr;
}
