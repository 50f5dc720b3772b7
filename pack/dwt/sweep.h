// The first levels of a long signal in one pass over it.
//
// Level after level would write each smooth part to memory and read it again. Here the smooth parts only
// pass: each level works on what the one before has just made, while that is in the cache.
#pragma once

#include "dwt/rows.h"

namespace undula {

// How many of the first levels one sweep carries; 0 for a signal that the caches hold, and for filters
// whose taps lie far apart or far from the origin.
std::uint32_t sweptLevels(const Ends& ends, const FilterBank& bank, Index n, std::uint32_t levels);

// The room for doubles that a sweep needs.
std::uint64_t sweepRoom();

// Splits n samples. The high-pass part of a level starts in `result` where the low-pass part would end;
// the last low-pass part goes to `low`.
void sweep(const Ends& ends, const FilterBank& bank, const double* samples, Index n, std::uint32_t levels,
           double* low, double* result, double* room);

}  // namespace undula
