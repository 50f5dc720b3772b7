// The bell by which neighbouring segments overlap.
#pragma once

#include <cstdint>

#include "frame/memory.h"
#include "frame/real_function.h"

namespace undula {

// A bell b, which rises from 1/sqrt(2) in the middle of the overlap to 1 at its end, at the midpoints
// of N equal steps: rising[k] = b(0.5 + (k + 0.5) / (2N)), falling[k] = sqrt(1 - rising[k]^2).
struct BellSamples {
    Array<double> rising;
    Array<double> falling;
    std::ptrdiff_t halfLength = 0;
};

// Samples the user's bell, or without one b(x) = sin(pi/4 (1 - cos(pi x))). False when there is no
// memory.
bool sampleBell(std::uint64_t halfLength, double_to_double_func* bell, BellSamples& samples);

}  // namespace undula
