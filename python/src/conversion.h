// Conversion between Python objects and host values. The interpreter lock is held throughout.
#pragma once

#include <pybind11/pybind11.h>

#include <memory>
#include <set>
#include <string>

#include "efihost/value.h"

namespace undula {

namespace py = pybind11;
using efihost::Value;

// The values of a call that use the memory of Python arrays.
using Lent = std::set<const Anyval*>;

// The value of an object. For an object that has none, TypeError or ValueError is raised with a text
// that begins with `place`, such as "dwt: argument 1 (data)". Arrays that the host can read as they
// are share their memory with the value and are added to `lent`; without `lent` all are copied.
Value toHost(py::handle object, const std::string& place, Lent* lent = nullptr);

// The object for a value. Given what was lent to the call, other arrays share the memory of the value
// and keep it alive; without `lent` all are copied.
py::object toPython(const Value& value, const Lent* lent = nullptr);

// The value of a callable.
Value userFunction(py::handle callable, const std::string& place);

// A callable whose results the pack sums or samples, so that each must be a number: the pack would
// take anything else for 0.
struct NumberFunction {
    py::object callable;
    bool metNan = false;  // whether a result was NaN
};
Value numberFunction(py::handle object, const std::string& place);

// Keeps an object alive for the host, which may drop it on any thread, with or without the
// interpreter lock.
std::shared_ptr<PyObject> keep(py::handle object);

}  // namespace undula
