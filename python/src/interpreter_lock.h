// The interpreter lock. An interpreter that ends gives it to no other thread any more: it ends a thread
// that asks (pthread_exit), by unwinding its stack. That would meet the host and the pack, which no
// unwinding may leave so, and destructors that use Python without the lock. So every thread is caught
// at the very call that asks for the lock, and sleeps until the process is gone.
#pragma once

#include <cxxabi.h>
#include <pybind11/pybind11.h>

namespace undula {

namespace py = pybind11;

// Whether only the thread that ends the interpreter can still get the lock.
bool interpreterEnds();

[[noreturn]] void sleepForEver();

// Does what may ask for the lock, if only because Python code runs that lets others have it at times.
// `work` owns nothing: what it leaves is not destroyed.
template <class Work>
auto askingForLock(Work work) {
    try {
        return work();
    } catch (const abi::__forced_unwind&) {
        sleepForEver();
    }
}

// The same for work that answers a new reference, or null with a Python error set.
template <class Work>
py::object newReference(Work work) {
    PyObject* const made = askingForLock(work);
    if (made == nullptr) {
        throw py::error_already_set();
    }
    return py::reinterpret_steal<py::object>(made);
}

// Lets go of the lock, which the thread holds, for as long as it lives.
class LockReleased {
 public:
    LockReleased();
    ~LockReleased();
    LockReleased(const LockReleased&) = delete;
    LockReleased& operator=(const LockReleased&) = delete;
};

// Holds the lock for as long as it lives, whether or not the thread is inside a LockReleased.
class LockHeld {
 public:
    LockHeld();
    ~LockHeld();
    LockHeld(const LockHeld&) = delete;
    LockHeld& operator=(const LockHeld&) = delete;

 private:
    const bool wasReleased_;
};

}  // namespace undula
