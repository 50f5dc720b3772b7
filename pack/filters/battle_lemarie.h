// The filters of Battle and Lemarie, whose scaling functions are orthonormalised splines.
//
// Sources: G. Battle, A block spin construction of ondelettes, Comm. Math. Phys. 110 (1987) 601-615;
// P.-G. Lemarie, Ondelettes a localisation exponentielle, J. Math. Pures Appl. 67 (1988) 227-236.
#pragma once

#include <cstdint>

namespace undula {

inline constexpr std::int32_t highestDegree = 6;

// The number of taps that are kept of the infinitely many.
constexpr std::int32_t battleLemarieTaps(std::int32_t degree) {
    return 40 - degree % 2;
}

// Writes the low-pass filter of a degree from 0 to 6: battleLemarieTaps(degree) taps, symmetric,
// with sum sqrt(2) up to what is cut off, which is 2e-6 (degree 1) to 2e-2 (degree 6).
void computeBattleLemarie(std::int32_t degree, double* taps);

}  // namespace undula
