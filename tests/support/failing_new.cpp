#include "support/failing_new.h"

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>

// Each delete must meet memory of its own kind, so that all are replaced but those of over-aligned
// memory, which only the host's Fourier transforms ask for. The libraries that the program loads use
// these, too.

namespace {

std::atomic<long> live{0};
std::atomic<long> requested{0};
std::atomic<long> refused{0};
std::atomic<std::size_t> limit{SIZE_MAX};
thread_local long countdown = 0;  // 0: nothing to fail

void* allocate(std::size_t bytes) noexcept {
    requested += static_cast<long>(bytes);
    void* memory = std::malloc(bytes == 0 ? 1 : bytes);
    if (memory) ++live;
    return memory;
}

// Fills memory with signalling NaNs, so that arithmetic with what nobody has written faults.
void* spoilt(void* memory, std::size_t bytes) noexcept {
    constexpr std::uint16_t piece = 0x7FF4;
    auto* place = static_cast<unsigned char*>(memory);
    for (std::size_t i = 0; memory && i + sizeof piece <= bytes; i += sizeof piece) {
        std::memcpy(place + i, &piece, sizeof piece);
    }
    return memory;
}

bool isToFail(std::size_t bytes) {
    if (bytes > limit) return ++refused > 0;
    return countdown > 0 && --countdown == 0;
}

void* orThrow(void* memory) {
    if (!memory) throw std::bad_alloc();
    return memory;
}

void release(void* memory) noexcept {
    if (memory) --live;
    std::free(memory);
}

}  // namespace

FailingNew::FailingNew(long k) {
    countdown = k;
}

FailingNew::~FailingNew() {
    countdown = 0;
}

bool FailingNew::happened() const {
    return countdown == 0;
}

void limitAllocations(std::size_t bytes) {
    limit = bytes;
}

long refusedAllocations() {
    return refused;
}

long liveAllocations() {
    return live;
}

long allocatedBytes() {
    return requested;
}

void* operator new(std::size_t bytes) {
    return orThrow(allocate(bytes));
}
void* operator new[](std::size_t bytes) {
    return orThrow(allocate(bytes));
}
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
    return isToFail(bytes) ? nullptr : spoilt(allocate(bytes), bytes);
}
void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept {
    return isToFail(bytes) ? nullptr : spoilt(allocate(bytes), bytes);
}
void operator delete(void* memory) noexcept {
    release(memory);
}
void operator delete[](void* memory) noexcept {
    release(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    release(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    release(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
    release(memory);
}
