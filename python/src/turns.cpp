#include "turns.h"

#if !defined(_WIN32)
#include <pthread.h>
#endif

#include <chrono>
#include <ctime>
#include <stdexcept>

#include "python_calls.h"

namespace undula {

using efihost::CallLock;
using efihost::Host;

namespace {

// Of a clock that is a few milliseconds behind, but quickly read where there is such a clock.
std::chrono::nanoseconds roughTime() {
#if defined(CLOCK_MONOTONIC_COARSE)
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC_COARSE, &now);
    return std::chrono::seconds(now.tv_sec) + std::chrono::nanoseconds(now.tv_nsec);
#else
    return std::chrono::steady_clock::now().time_since_epoch();
#endif
}

// Never destroyed: at the end of the process a thread may still be in a call.
Host* theHost = nullptr;

void makeHost() {
    theHost = new Host;
    theHost->setInterrupt(checkInterrupt);
}

// After a fork during a call of another thread, the host is as that call has left it.
[[maybe_unused]] void renewHost() {
    if (!CallLock::instance().isMine()) {
        makeHost();
    }
}

}  // namespace

void prepareHost() {
    makeHost();
#if !defined(_WIN32)
    pthread_atfork(nullptr, nullptr, &renewHost);
#endif
}

Host& host() {
    return *theHost;
}

bool checkInterrupt() {
    constexpr auto period = std::chrono::milliseconds(20);
    static std::chrono::nanoseconds next{};  // guarded by the lock that every call holds
    const auto now = roughTime();
    if (now < next) {
        return false;
    }
    next = now + period;
    const LockHeld lock;
    checkSignals();
    return false;
}

std::unique_lock<CallLock> takeTurn() {
    constexpr auto period = std::chrono::milliseconds(20);
    std::unique_lock turn(CallLock::instance(), std::try_to_lock);
    while (!turn) {
        if (interpreterEnds()) {
            throw std::runtime_error("undula: another thread is in a call while the interpreter ends");
        }
        if (!turn.try_lock_for(period)) {
            const LockHeld lock;
            checkSignals();
        }
    }
    return turn;
}

}  // namespace undula
