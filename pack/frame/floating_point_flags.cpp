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
HostServiceScope::HostServiceScope() : state(_mm_getcsr()) {
    _mm_setcsr(state & ~allFaults);
}
HostServiceScope::~HostServiceScope() {
    _mm_setcsr(state);
}
void HostServiceScope::keepFaults() {
    state |= raisedFaults();
}

#else

unsigned raisedFaults() {
    return static_cast<unsigned>(std::fetestexcept(allFaults));
}
HostServiceScope::HostServiceScope() : state() {
    std::feholdexcept(&state);
}
HostServiceScope::~HostServiceScope() {
    std::fesetenv(&state);
}
void HostServiceScope::keepFaults() {
    std::feupdateenv(&state);
    std::fegetenv(&state);
}

#endif

}  // namespace undula
