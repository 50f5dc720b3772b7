// The lock that every call takes.
#pragma once

#include <atomic>
#include <chrono>
#include <mutex>
#include <thread>

#include "efi/platform.h"

namespace efihost {

// A recursive lock, for std::unique_lock. In a child process made by fork, what another thread of the
// parent held is free; what the forking thread held, it still holds.
class EFI_HOST CallLock {
 public:
    // The one of the process.
    static CallLock& instance();

    void lock();
    bool try_lock();
    bool try_lock_for(std::chrono::milliseconds patience);
    void unlock();

    // Whether this thread holds it.
    bool isMine() const { return holder_ == std::this_thread::get_id(); }

    // In the child of a fork: frees what a thread that does not exist there held.
    void leaveToThisThread();

 private:
    CallLock() = default;
    bool enterAgain();
    void enter();

    std::timed_mutex mutex_;
    std::atomic<std::thread::id> holder_;  // of the mutex
    int depth_ = 0;                        // how often the holder has locked
};

}  // namespace efihost
