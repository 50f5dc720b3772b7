#include "support/floating_point.h"

#include <cfenv>
#include <limits>

#if defined(__SSE2__)
#include <xmmintrin.h>
#endif

#if defined(_WIN32)

namespace {

// Rounds up, to 53 bits.
constexpr unsigned unusualWord = 0xA7F;

unsigned controlWord() {
    unsigned short word = 0;
    asm volatile("fnstcw %0" : "=m"(word));
    return word;
}

void setControlWord(unsigned wanted) {
    const auto word = static_cast<unsigned short>(wanted);
    asm volatile("fldcw %0" : : "m"(word));
}

}  // namespace

UnusualCaller::UnusualCaller() : state_(controlWord()) {
    setControlWord(unusualWord);
}

UnusualCaller::~UnusualCaller() {
    setControlWord(state_);
}

bool UnusualCaller::undisturbed() const {
    return controlWord() == unusualWord;
}

#else

namespace {

// The host's own work may raise FE_INEXACT, so that is raised from the start.
constexpr int raised = FE_INVALID | FE_INEXACT;

unsigned vectorState() {
#if defined(__SSE2__)
    return _mm_getcsr();
#else
    return 0;
#endif
}

void flushDenormals() {
#if defined(__SSE2__)
    _mm_setcsr(_mm_getcsr() | 0x8040);
#endif
}

}  // namespace

UnusualCaller::UnusualCaller() {
    std::fesetround(FE_UPWARD);
    std::feclearexcept(FE_ALL_EXCEPT);
    std::feraiseexcept(raised);
    volatile double third = 3.0;
    third = 1.0 / third;  // inexact for the vector unit, too
    flushDenormals();
    state_ = vectorState();
}

UnusualCaller::~UnusualCaller() {
    std::fesetenv(FE_DFL_ENV);
}

bool UnusualCaller::undisturbed() const {
    return std::fegetround() == FE_UPWARD && std::fetestexcept(FE_ALL_EXCEPT) == raised &&
           vectorState() == state_;
}

#endif

void raiseFaults() {
    volatile double zero = 0.0;
    volatile double large = std::numeric_limits<double>::max();
    volatile double result = 1.0 / zero;
    result = large * large;
    result = result - result;
}
