#include "frame/floating_point.h"

#include <cstdint>

#include "frame/errors.h"

namespace undula {

// The weightiest of several.
const char* pendingFault() {
    constexpr std::uint32_t divideByZero = 0xC000008E;
    constexpr std::uint32_t invalidOperation = 0xC0000090;
    constexpr std::uint32_t overflow = 0xC0000091;
    const unsigned faults = raisedFaults();
    if (faults & FE_DIVBYZERO) return exceptionText(divideByZero);
    if (faults & FE_OVERFLOW) return exceptionText(overflow);
    if (faults & FE_INVALID) return exceptionText(invalidOperation);
    return nullptr;
}

}  // namespace undula
