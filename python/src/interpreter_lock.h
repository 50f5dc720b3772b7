// The interpreter lock. While the interpreter ends, a thread that asks for the lock is ended
// (pthread_exit) by unwinding its stack. That must not unwind the host and the pack, nor run
// destructors that use Python without the lock. So the unwinding is caught at the call that asks for
// the lock, and the thread sleeps until the process is gone.
#pragma once

#include <cxxabi.h>
#include <pybind11/pybind11.h>

namespace undula {

namespace py = pybind11;

// Whether only the thread that ends the interpreter can still get the lock.
bool interpreterEnds();

[[noreturn]] void sleepForEver();

// Does work that may ask for the lock, as any Python code does from time to time. `work` owns nothing,
// since its objects would not be destroyed. What forced unwinding throws is a reference to null.
template <class Work>
__attribute__((no_sanitize("null", "alignment"))) auto askingForLock(Work work) {
    try {
        return work();
    } catch (const abi::__forced_unwind&) {
        sleepForEver();
    }
}

// Releases the lock, which the thread holds, while it lives.
class LockReleased {
 public:
    LockReleased();
    ~LockReleased();
    LockReleased(const LockReleased&) = delete;
    LockReleased& operator=(const LockReleased&) = delete;
};

// Holds the lock while it lives, whether or not the thread is inside a LockReleased.
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
