// Numbers as users give them: doubles that may be anything.
#pragma once

#include <cmath>

namespace undula {

inline constexpr double largest32Bits = 4294967295.0;

// Infinity is a whole number, NaN is not.
inline bool isWhole(double x) {
    return std::floor(x) == x;
}

}  // namespace undula
