// The floating-point state of a call.
//
// A fault of the pack's own arithmetic (division by zero, invalid operation, overflow) becomes
// the call's result. Where the x87 unit does the arithmetic, the unit traps the fault and the host
// throws, if it can; the same holds for faults of the host and of user functions. Elsewhere the pack
// ignores those, and reads its own from the status flags at the end. WebAssembly has neither traps nor
// flags: there the pack reports no faults, and the host sees by a result that one has happened.
//
// All of this stands in translation units of its own and is called out of line: a compiler may
// move arithmetic across flag accesses that it can see.
#pragma once

#include <cfenv>
#include <cstdint>

namespace undula {

#if defined(__SSE2_MATH__)
// Of the unit that the arithmetic does not use.
struct X87State {
    std::uint16_t control;
    std::uint16_t status;

    bool operator==(const X87State&) const = default;
};
#endif

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
    // Of a call that this one is nested in.
    bool outerFrame;
    unsigned outerFaults;
#elif defined(__SSE2_MATH__)
    unsigned vectorState;
    X87State x87;
#elif !defined(__wasm__)
    std::fenv_t environment;
#endif
};

// The message of the fault that the pack's arithmetic has raised in this call, or null.
const char* pendingFault();

// All of its faults, as FE_ flags.
unsigned raisedFaults();

// Keeps the pack's faults and modes apart from those of others, such as a host service, while it lives.
class HostServiceScope {
 public:
    HostServiceScope();
    ~HostServiceScope();
    HostServiceScope(const HostServiceScope&) = delete;
    HostServiceScope& operator=(const HostServiceScope&) = delete;

    // Makes the faults that were raised meanwhile the pack's.
    void keepFaults();

#if defined(__SSE2_MATH__)
 private:
    unsigned state;
#elif !defined(_WIN32) && !defined(__wasm__)
 private:
    std::fenv_t state;
#endif
};

}  // namespace undula
