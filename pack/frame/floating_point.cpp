#include "frame/floating_point.h"

#include <cfenv>
#include <cstdint>

#include "frame/errors.h"

#if defined(__SSE2_MATH__)
#include <xmmintrin.h>
#endif

namespace undula {

namespace {

// The text of the weightiest of the faults that a status register shows; none for none.
const char* textOf(unsigned flags) {
    constexpr std::uint32_t divideByZero = 0xC000008E;
    constexpr std::uint32_t invalidOperation = 0xC0000090;
    constexpr std::uint32_t overflow = 0xC0000091;
    if (flags & FE_DIVBYZERO) return exceptionText(divideByZero);
    if (flags & FE_OVERFLOW) return exceptionText(overflow);
    if (flags & FE_INVALID) return exceptionText(invalidOperation);
    return nullptr;
}

}  // namespace

#if defined(_WIN32)

}  // namespace undula

// In place of the library's, for which the root of a negative number is no fault.
extern "C" double sqrt(double x) {
    asm volatile("fsqrt" : "+t"(x));
    return x;
}

namespace undula {

namespace {

// Invalid operation, division by zero and overflow trap; 64 bits of precision; round to nearest.
constexpr unsigned short packControlWord = 0x372;

// In the status word: division by zero, overflow, and invalid operations, those of a full or an
// empty stack among them.
constexpr unsigned allFaults = 0x4d;

unsigned statusWord() {
    unsigned short word = 0;
    asm volatile("fnstsw %0" : "=m"(word));
    return word;
}

// The faults of the call in progress that have not been thrown.
unsigned setAside = 0;

// The unit reports a fault when it is used the next time. That must not be by the host, nor must the
// host's fault be met by the pack. A host masks what it cannot throw: from here on faults trap again.
void setFaultsAside() {
    const unsigned faults = statusWord() & allFaults;
    if (faults == 0) return;
    setAside |= faults;
    asm volatile("fninit");
    asm volatile("fldcw %0" : : "m"(packControlWord));
}

}  // namespace

FloatingPointFrame::FloatingPointFrame() : controlWord(0), outerFaults(setAside) {
    setAside = 0;
    asm volatile("fnclex");
    asm volatile("fnstcw %0" : "=m"(controlWord));
    asm volatile("fldcw %0" : : "m"(packControlWord));
}

FloatingPointFrame::~FloatingPointFrame() {
    setAside = outerFaults;
    asm volatile("fninit");
    asm volatile("fldcw %0" : : "m"(controlWord));
}

// A fault that the host could not throw is in the status word. What is pending is reported here.
const char* pendingFault() {
    asm volatile("fwait");
    return textOf(statusWord() | setAside);
}

HostServiceScope::HostServiceScope() {
    setFaultsAside();
}

HostServiceScope::~HostServiceScope() {
    setFaultsAside();
}

#else

namespace {

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
    return textOf(raisedFlags());
}

HostServiceScope::HostServiceScope() : faults(raisedFlags()) {
    setFlags(0);
}
HostServiceScope::~HostServiceScope() {
    setFlags(faults);
}

#endif

}  // namespace undula
