// The floating-point state of a call.
//
// A fault of the pack's own arithmetic (division by zero, invalid operation, overflow) becomes
// the call's result. Where the x87 unit does the arithmetic, the unit traps the fault and the host
// throws, if it can; so it does with faults of the host and of user functions. Elsewhere those are no
// business of the pack's, and its own are read from the status flags at the end.
//
// All of this stands in a translation unit of its own and is called out of line: a compiler may
// move arithmetic across flag accesses that it can see.
#pragma once

#include <cfenv>

namespace undula {

// Holds the caller's state and gives the pack its own: round to nearest, no faults pending. Puts
// the caller's state back, flags included, on every path.
class FloatingPointFrame {
 public:
    FloatingPointFrame();
    ~FloatingPointFrame();
    FloatingPointFrame(const FloatingPointFrame&) = delete;
    FloatingPointFrame& operator=(const FloatingPointFrame&) = delete;

 private:
#if defined(_WIN32)
    unsigned short controlWord;
    unsigned outerFaults;  // of a call that this one is nested in
#else
    std::fenv_t environment;
#endif
};

// The message of the fault that the pack's arithmetic has raised in this call, or null.
const char* pendingFault();

// Keeps the pack's faults apart from those of the host while a host service runs.
class HostServiceScope {
 public:
    HostServiceScope();
    ~HostServiceScope();
    HostServiceScope(const HostServiceScope&) = delete;
    HostServiceScope& operator=(const HostServiceScope&) = delete;

#if !defined(_WIN32)
 private:
    unsigned faults;
#endif
};

}  // namespace undula
