// Values of Python as values of the host, and back. The interpreter lock is held throughout.
#pragma once

#include <pybind11/pybind11.h>

#include <memory>
#include <set>
#include <string>

#include "efihost/value.h"

namespace undula {

namespace py = pybind11;
using efihost::Value;

// The values of a call that are made around the memory of Python's own arrays.
using Lent = std::set<const Anyval*>;

// The value of an object. `place` opens the text of the TypeError or ValueError that is raised
// for an object that has none, as in "dwt: argument 1 (data)". Arrays that the host can read as
// they are become values around their memory, added to `lent`; without it all are copied.
Value toHost(py::handle object, const std::string& place, Lent* lent = nullptr);

// The object for a value. Given what was lent to the call, an array of any other memory shows the
// memory of the value and owns the value; without it all are copied.
py::object toPython(const Value& value, const Lent* lent = nullptr);

// The value of a callable.
Value userFunction(py::handle callable, const std::string& place);

// Keeps an object alive on behalf of the host, which lets go of it on any thread and with or
// without the interpreter lock.
std::shared_ptr<PyObject> keep(py::handle object);

}  // namespace undula
