// What the conversions ask of Python. Any of it may run Python code, be it only the finaliser of an
// object that is let go, and so may ask for the interpreter lock (interpreter_lock.h). The conversions
// reach Python through what stands here, and own objects by References.
#pragma once

#include <span>
#include <string>
#include <utility>

#include "interpreter_lock.h"

namespace undula {

// An object that is owned, or none.
class Reference {
 public:
    Reference() = default;
    // Takes over a new reference.
    explicit Reference(PyObject* owned) : object_(owned) {}
    // A further reference.
    static Reference to(py::handle object) { return Reference(object.inc_ref().ptr()); }

    Reference(const Reference& other) : Reference(Py_XNewRef(other.object_)) {}
    Reference(Reference&& other) noexcept : object_(other.release()) {}
    Reference& operator=(Reference other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~Reference() {
        if (object_ != nullptr) {
            askingForLock([object = object_] { Py_DECREF(object); });
        }
    }

    PyObject* get() const { return object_; }
    operator py::handle() const { return object_; }
    explicit operator bool() const { return object_ != nullptr; }
    // Leaves the reference to the caller.
    PyObject* release() { return std::exchange(object_, nullptr); }

 private:
    PyObject* object_ = nullptr;
};

// Throws the Python error that is set.
[[noreturn]] void throwPending();

// What the work returns, which is a new reference, or null with a Python error set.
template <class Work>
Reference newReference(Work work) {
    PyObject* const made = askingForLock(work);
    if (made == nullptr) {
        throwPending();
    }
    return Reference(made);
}

// An attribute; without `IfAny` it must be there.
Reference attribute(py::handle object, const char* name);
Reference attributeIfAny(py::handle object, const char* name);

Reference callPython(py::handle callable, py::handle arguments);

using Objects = std::span<PyObject* const>;

// The items of a sequence as a tuple, and those of a tuple.
Reference tupleOf(py::handle sequence);
Objects itemsOf(const Reference& tuple);

// str() of an object.
std::string textOf(py::handle object);

// Has the handlers of pending signals called; what they raise, such as KeyboardInterrupt, is thrown.
void checkSignals();

}  // namespace undula
