// The scaling function of a low-pass filter, tabulated by the cascade algorithm.
//
// Source: I. Daubechies, Ten Lectures on Wavelets (SIAM, 1992), section 6.5.
#pragma once

#include <cstdint>

namespace undula {

// Values of a table for a filter of the given number of taps, at least 1.
constexpr std::int32_t cascadeLength(std::int32_t taps) {
    return 31 * (taps - 1) + 1;
}

// Writes the filter, iterated five times, into `table` (cascadeLength(taps) values). With the first
// tap at position o, entry m belongs to grid index 31 o + m, at 32 grid points a unit; 2^(5/2)
// times the entry approximates the scaling function there.
void buildCascade(const double* filter, std::int32_t taps, double* table);

}  // namespace undula
