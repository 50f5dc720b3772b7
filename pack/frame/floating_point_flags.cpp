// Where faults do not trap: they are read from the status flags.
#include "frame/floating_point.h"

#if defined(__SSE2_MATH__)
#include <xmmintrin.h>
#endif

namespace undula {

namespace {

constexpr unsigned allFaults = FE_DIVBYZERO | FE_OVERFLOW | FE_INVALID;

}  // namespace

FloatingPointFrame::FloatingPointFrame() : environment() {
    std::fegetenv(&environment);
    std::fesetenv(FE_DFL_ENV);
    std::feclearexcept(FE_ALL_EXCEPT);
}

FloatingPointFrame::~FloatingPointFrame() {
    std::fesetenv(&environment);
}

#if defined(__SSE2_MATH__)

// The arithmetic is done by the vector unit alone; its register is far cheaper to reach than the
// whole environment, and a search may call a user function for every coefficient.
unsigned raisedFaults() {
    return _mm_getcsr() & allFaults;
}

namespace {

void clearFaults() {
    _mm_setcsr(_mm_getcsr() & ~allFaults);
}
void raiseFaults(unsigned faults) {
    _mm_setcsr(_mm_getcsr() | faults);
}

}  // namespace

HostServiceScope::HostServiceScope() : state(_mm_getcsr()) {
    _mm_setcsr(state & ~unsigned{FE_ALL_EXCEPT});
}
// The rounding mode, too, is the pack's again.
HostServiceScope::~HostServiceScope() {
    _mm_setcsr(state);
}

#else

unsigned raisedFaults() {
    return static_cast<unsigned>(std::fetestexcept(allFaults));
}

namespace {

void clearFaults() {
    std::feclearexcept(FE_ALL_EXCEPT);
}
void raiseFaults(unsigned faults) {
    std::feraiseexcept(static_cast<int>(faults));
}

}  // namespace

HostServiceScope::HostServiceScope() : state() {
    std::fegetenv(&state);
    std::feclearexcept(FE_ALL_EXCEPT);
}
// The rounding mode, too, is the pack's again.
HostServiceScope::~HostServiceScope() {
    std::fesetenv(&state);
}

#endif

FaultWatch::FaultWatch() : before(raisedFaults()) {
    clearFaults();
}
FaultWatch::~FaultWatch() {
    raiseFaults(before);
}
bool FaultWatch::faulted() const {
    return raisedFaults() != 0;
}

}  // namespace undula
