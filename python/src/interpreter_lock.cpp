#include "interpreter_lock.h"

#include <chrono>
#include <thread>
#include <utility>

namespace undula {

namespace {

// Python's state of this thread while the thread has released the lock; null while it holds it.
thread_local PyThreadState* released = nullptr;

void release() {
    released = PyEval_SaveThread();
}

void retake() {
    askingForLock([] { PyEval_RestoreThread(std::exchange(released, nullptr)); });
}

}  // namespace

bool interpreterEnds() {
    return _Py_IsFinalizing() != 0;
}

void sleepForEver() {
    for (;;) {
        std::this_thread::sleep_for(std::chrono::hours(1));
    }
}

LockReleased::LockReleased() {
    release();
}

LockReleased::~LockReleased() {
    retake();
}

LockHeld::LockHeld() : wasReleased_(released != nullptr) {
    if (wasReleased_) {
        retake();
    }
}

LockHeld::~LockHeld() {
    if (wasReleased_) {
        release();
    }
}

}  // namespace undula
