#include "support/floating_point.h"

#include <cfenv>
#include <iterator>
#include <limits>

#if defined(__SSE2__)
#include <xmmintrin.h>
#endif

#if defined(_WIN32)

namespace {

// Rounds up or down to 53 bits, or towards zero where a division by zero traps.
constexpr unsigned unusualWords[] = {0xA7F, 0x67F, 0xF7B};

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

const int UnusualCaller::kinds = std::size(unusualWords);

UnusualCaller::UnusualCaller(int kind) : kind_(kind), state_(controlWord()) {
    setControlWord(unusualWords[kind]);
}

UnusualCaller::~UnusualCaller() {
    setControlWord(state_);
}

bool UnusualCaller::undisturbed() const {
    return controlWord() == unusualWords[kind_];
}

#else

namespace {

// The host's own work may raise FE_INEXACT, so that is raised from the start. What traps is not raised, as it
// would trap at once.
struct Kind {
    int rounding;
    bool flushes;
    int raised;
    int traps;
};
constexpr Kind unusual[] = {
    {FE_UPWARD, true, FE_INVALID | FE_INEXACT, 0},
    {FE_DOWNWARD, false, FE_INEXACT, FE_INVALID | FE_DIVBYZERO | FE_OVERFLOW | FE_UNDERFLOW},
    {FE_TOWARDZERO, true, FE_OVERFLOW | FE_INEXACT, FE_DIVBYZERO},
};

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

void letTrap(int faults) {
#if defined(__GLIBC__)
    feenableexcept(faults);
#endif
}

int trapping() {
#if defined(__GLIBC__)
    return fegetexcept();
#else
    return 0;
#endif
}

}  // namespace

const int UnusualCaller::kinds = std::size(unusual);

UnusualCaller::UnusualCaller(int kind) : kind_(kind) {
    const auto& [rounding, flushes, raised, traps] = unusual[kind];
    std::fesetround(rounding);
    std::feclearexcept(FE_ALL_EXCEPT);
    std::feraiseexcept(raised);
    volatile double third = 3.0;
    third = 1.0 / third;  // inexact for the vector unit, too
    if (flushes) flushDenormals();
    letTrap(traps);
    state_ = vectorState();
}

UnusualCaller::~UnusualCaller() {
    std::fesetenv(FE_DFL_ENV);
}

bool UnusualCaller::undisturbed() const {
    const Kind& kind = unusual[kind_];
    return std::fegetround() == kind.rounding && std::fetestexcept(FE_ALL_EXCEPT) == kind.raised &&
           trapping() == kind.traps && vectorState() == state_;
}

#endif

void raiseFaults() {
    volatile double zero = 0.0;
    volatile double large = std::numeric_limits<double>::max();
    volatile double result = 1.0 / zero;
    result = large * large;
    result = result - result;
}
