// Where faults do not trap: they are read from the status flags.
#include "frame/floating_point.h"

#if defined(__SSE2_MATH__)
#include <xmmintrin.h>
#endif

namespace undula {

namespace {

constexpr unsigned allFaults = FE_DIVBYZERO | FE_OVERFLOW | FE_INVALID;

}  // namespace

#if defined(__SSE2_MATH__)

// The arithmetic is done by the vector unit alone, whose register is far cheaper to reach than the
// whole environment: a user function may be called for every coefficient, a function for every point.
namespace {

constexpr unsigned masked = 0x1f80;  // all faults, none of them raised; round to nearest

X87State x87State() {
    X87State state{};
    asm volatile("fnstcw %0" : "=m"(state.control));
    asm volatile("fnstsw %0" : "=m"(state.status));
    return state;
}

void setX87State(const X87State& state) {
    struct {
        std::uint16_t control, unused, status;
        std::uint16_t rest[11];
    } environment;
    asm volatile("fnstenv %0" : "=m"(environment));
    environment.control = state.control;
    environment.status = state.status;
    asm volatile("fldenv %0" : : "m"(environment));
}

}  // namespace

FloatingPointFrame::FloatingPointFrame() : vectorState(_mm_getcsr()), x87(x87State()) {
    _mm_setcsr(masked);
}

// A service of the host may have changed the other unit's modes, or raised its flags.
FloatingPointFrame::~FloatingPointFrame() {
    if (x87State() != x87) setX87State(x87);
    _mm_setcsr(vectorState);
}

unsigned raisedFaults() {
    return _mm_getcsr() & allFaults;
}

// To write the register costs more than to read it, and mostly nothing has changed.
HostServiceScope::HostServiceScope() : state(_mm_getcsr()) {
    if ((state & allFaults) != 0) _mm_setcsr(state & ~allFaults);
}
HostServiceScope::~HostServiceScope() {
    if (_mm_getcsr() != state) _mm_setcsr(state);
}
void HostServiceScope::keepFaults() {
    state |= raisedFaults();
}

#else

FloatingPointFrame::FloatingPointFrame() : environment() {
    std::fegetenv(&environment);
    std::fesetenv(FE_DFL_ENV);
    std::feclearexcept(FE_ALL_EXCEPT);
}

FloatingPointFrame::~FloatingPointFrame() {
    std::fesetenv(&environment);
}

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
