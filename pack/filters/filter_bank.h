// The two-channel filter bank that the arithmetic works with.
#pragma once

#include <cstdint>

namespace undula {

class Wavelet;

// Rows of boundary filters: row i has taps / 2 + 1 + 2 i coefficients.
using EdgeRows = const double* const*;

// All that is known of a selected wavelet. A filter with offset o and n taps meets, at output k,
// the positions o + 2k to o + 2k + n - 1.
struct FilterBank {
    const Wavelet* selected = nullptr;
    const double* ha = nullptr;  // analysis low-pass, La taps at offset oa
    const double* hs = nullptr;  // synthesis low-pass, Lb taps at offset os
    const double* ga = nullptr;  // analysis high-pass, Lb taps at offset ob
    const double* gs = nullptr;  // synthesis high-pass, La taps at offset og
    std::int32_t La = 0;
    std::int32_t Lb = 0;
    std::int32_t oa = 0;
    std::int32_t os = 0;
    std::int32_t ob = 0;
    std::int32_t og = 0;
    const double* cascadeA = nullptr;  // the scaling functions of ha and hs, 32 points a unit
    const double* cascadeS = nullptr;
    EdgeRows BLlo = nullptr;  // boundary filters of the interval, La / 2 rows each; null without
    EdgeRows BLhi = nullptr;
    EdgeRows BRlo = nullptr;
    EdgeRows BRhi = nullptr;
    EdgeRows edgeAuxA = nullptr;
    EdgeRows edgeAuxB = nullptr;
    std::int32_t flipA = 0;
    std::int32_t flipS = 0;
};

}  // namespace undula
