#include "stack.h"

#include <octave/error.h>

#include <cstdint>

#if defined(__linux__)
#include <pthread.h>
#endif

namespace undula {
namespace {

// A call of the pack takes up to 48 KiB; what it calls back, with the interpreter between, needs more.
constexpr std::uintptr_t reserve = 256U * 1024U;

// The lowest address of this thread's stack; 0 where it is not known.
std::uintptr_t lowestAddress() {
    std::uintptr_t lowest = 0;
#if defined(__linux__)
    pthread_attr_t attributes;
    if (pthread_getattr_np(pthread_self(), &attributes) == 0) {
        void* address = nullptr;
        std::size_t size = 0;
        if (pthread_attr_getstack(&attributes, &address, &size) == 0) {
            lowest = reinterpret_cast<std::uintptr_t>(address);
        }
        pthread_attr_destroy(&attributes);
    }
#endif
    return lowest;
}

}  // namespace

void requireStack() {
    thread_local const std::uintptr_t lowest = lowestAddress();
    const auto here = reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
    if (lowest != 0 && here - lowest < reserve) {
        error_with_id("Undula:nested-too-deeply", "undula: calls nested too deeply for the stack");
    }
}

}  // namespace undula
