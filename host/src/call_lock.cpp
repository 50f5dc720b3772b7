#include "efihost/call_lock.h"

#include <new>

namespace efihost {

// Never destroyed: a call may wait for it while the process ends.
CallLock& CallLock::instance() {
    static CallLock& theLock = *new CallLock;
    return theLock;
}

bool CallLock::enterAgain() {
    if (!isMine()) return false;
    ++depth_;
    return true;
}

void CallLock::enter() {
    holder_ = std::this_thread::get_id();
    depth_ = 1;
}

void CallLock::lock() {
    if (enterAgain()) return;
    mutex_.lock();
    enter();
}

bool CallLock::try_lock() {
    if (enterAgain()) return true;
    if (!mutex_.try_lock()) return false;
    enter();
    return true;
}

bool CallLock::try_lock_for(std::chrono::milliseconds patience) {
    if (enterAgain()) return true;
    if (!mutex_.try_lock_for(patience)) return false;
    enter();
    return true;
}

void CallLock::unlock() {
    if (--depth_ > 0) return;
    holder_ = std::thread::id();
    mutex_.unlock();
}

// A mutex that a vanished thread holds, or was about to hold or leave, is only good for its memory.
void CallLock::leaveToThisThread() {
    if (isMine()) return;
    new (&mutex_) std::timed_mutex;
    holder_ = std::thread::id();
    depth_ = 0;
}

}  // namespace efihost
