// Conversion between Python objects and host values. The interpreter lock is held throughout.
#pragma once

#include <pybind11/pybind11.h>

#include <memory>
#include <set>
#include <string>
#include <string_view>

#include "efihost/value.h"
#include "python_calls.h"

namespace undula {

namespace py = pybind11;
using efihost::Value;

// The values of a call that use the memory of the caller's arrays.
using Lent = std::set<const Anyval*>;

// Where in a call an object stands.
struct Place {
    std::string_view function;  // of the pack, whose names live as long as the process
    std::size_t index;          // of the argument, from 0
    std::string name;           // of the argument; may be empty
    bool isResult = false;      // not the argument itself, but what it has returned as a function

    // "dwt: argument 1 (data)"
    std::string text() const;
};

// The value of an object. For an object that has none, TypeError or ValueError is raised with a text
// that begins with that of its place. Arrays that the host can read as they are share their memory with
// the value and are added to `lent`; without `lent` all are copied.
Value toHost(py::handle object, const Place& place, Lent* lent = nullptr);

// The object for a value. Given what was lent to the call, other arrays share the memory of the value
// and keep it alive; without `lent` all are copied.
Reference toPython(const Value& value, const Lent* lent = nullptr);

// The value of a callable.
Value userFunction(py::handle callable, const Place& place);

// A callable where a function is wanted, whatever else it is. `wantsNumber`: the pack sums or samples its
// results, so that each must be a number, as the pack would take anything else for 0.
struct UserFunction {
    py::object callable;
    bool wantsNumber;
    bool metNan = false;  // whether a number was NaN
};
Value wrappedFunction(py::handle object, const Place& place);

// Keeps an object alive for the host, which may drop it on any thread, with or without the
// interpreter lock.
std::shared_ptr<PyObject> keep(py::handle object);

// Makes objects that contain each other end in a RecursionError, not in a stack overflow, and lets
// Ctrl-C end a long way through them.
class Descent {
 public:
    Descent();
    ~Descent();
    Descent(const Descent&) = delete;
    Descent& operator=(const Descent&) = delete;
};

}  // namespace undula
