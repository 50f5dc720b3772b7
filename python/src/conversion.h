// Values of Python as values of the host, and back. The interpreter lock is held throughout.
#pragma once

#include <pybind11/pybind11.h>

#include <memory>
#include <string>

#include "efihost/value.h"

namespace undula {

namespace py = pybind11;
using efihost::Value;

// Whether a value may refer to the memory of an array that Python keeps, or has to copy it.
enum class Memory { shared, copied };

// The value of an object. `place` opens the text of the TypeError or ValueError that is raised
// for an object that has none, as in "dwt: argument 1 (data)".
Value toHost(py::handle object, const std::string& place, Memory memory);

// The object for a value: with Memory::shared an array owns the value and shows its memory.
py::object toPython(const Value& value, Memory memory);

// The value of a callable.
Value userFunction(py::handle callable, const std::string& place);

// Keeps an object alive on behalf of the host, which lets go of it on any thread and with or
// without the interpreter lock.
std::shared_ptr<PyObject> keep(py::handle object);

}  // namespace undula
