#include "frame/floating_point.h"

#include <cstdint>

#include "frame/errors.h"

#if defined(__SSE2_MATH__)
#include <xmmintrin.h>
#endif

namespace undula {

#if defined(_WIN32)

namespace {
// Invalid operation, division by zero and overflow trap; 64 bits of precision; round to nearest.
constexpr unsigned short packControlWord = 0x372;
}  // namespace

FloatingPointFrame::FloatingPointFrame() : controlWord(0) {
    asm volatile("fnclex");
    asm volatile("fnstcw %0" : "=m"(controlWord));
    asm volatile("fldcw %0" : : "m"(packControlWord));
}

FloatingPointFrame::~FloatingPointFrame() {
    asm volatile("fninit");
    asm volatile("fldcw %0" : : "m"(controlWord));
}

const char* pendingFault() {
    asm volatile("fwait");
    return nullptr;
}

HostServiceScope::HostServiceScope() : faults(0) {}
HostServiceScope::~HostServiceScope() = default;

#else

namespace {

constexpr std::uint32_t divideByZero = 0xC000008E;
constexpr std::uint32_t invalidOperation = 0xC0000090;
constexpr std::uint32_t overflow = 0xC0000091;

#if defined(__SSE2_MATH__)

// The arithmetic is done by the vector unit alone; its register is far cheaper to reach than the
// whole environment, and a search may call a user function for every coefficient.
constexpr unsigned allFlags = 0x3f;

unsigned raisedFlags() {
    return _mm_getcsr() & allFlags;
}
void setFlags(unsigned flags) {
    _mm_setcsr((_mm_getcsr() & ~allFlags) | flags);
}

#else

unsigned raisedFlags() {
    return static_cast<unsigned>(std::fetestexcept(FE_ALL_EXCEPT));
}

void setFlags(unsigned flags) {
    std::feclearexcept(FE_ALL_EXCEPT);
    std::feraiseexcept(static_cast<int>(flags));
}

#endif

}  // namespace

FloatingPointFrame::FloatingPointFrame() : environment() {
    std::fegetenv(&environment);
    std::fesetenv(FE_DFL_ENV);
    std::feclearexcept(FE_ALL_EXCEPT);
}

FloatingPointFrame::~FloatingPointFrame() {
    std::fesetenv(&environment);
}

const char* pendingFault() {
    const unsigned flags = raisedFlags();
    if (flags & FE_DIVBYZERO) return exceptionText(divideByZero);
    if (flags & FE_OVERFLOW) return exceptionText(overflow);
    if (flags & FE_INVALID) return exceptionText(invalidOperation);
    return nullptr;
}

HostServiceScope::HostServiceScope() : faults(raisedFlags()) {
    setFlags(0);
}
HostServiceScope::~HostServiceScope() {
    setFlags(faults);
}

#endif

}  // namespace undula
