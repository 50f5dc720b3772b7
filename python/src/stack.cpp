#include "stack.h"

#include <pybind11/pybind11.h>

#include <cstddef>
#include <cstdint>

#if defined(__linux__)
#include <pthread.h>
#endif

#include "python_calls.h"

namespace undula {
namespace {

// A call of the pack with its conversions takes up to 48 KiB. As much is left to what is called back.
constexpr std::uintptr_t reserve = std::uintptr_t{96} * 1024;

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
        PyErr_SetString(PyExc_RecursionError, "calls or arguments nested too deeply for the thread's stack");
        throwPending();
    }
}

}  // namespace undula
