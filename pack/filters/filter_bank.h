// The two-channel filter bank that the arithmetic works with.
#pragma once

#include <algorithm>
#include <cstdint>

namespace undula {

class Wavelet;

// No built-in filter is longer, and no longer one is taken from a user.
inline constexpr std::int32_t mostTaps = 100;

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
    // What no transform reads, part of the record all the same: rows derived from the boundary filters,
    // always null here, and whether the high-pass filters were negated, which they have been by now.
    EdgeRows edgeAuxA = nullptr;
    EdgeRows edgeAuxB = nullptr;
    std::int32_t flipA = 0;
    std::int32_t flipS = 0;
};

// A filter and the position of its first tap.
struct Filter {
    const double* taps;
    std::int32_t count;
    std::int32_t offset;

    std::int32_t last() const { return offset + count - 1; }
};

// The filters of one direction.
struct Channels {
    Filter low;
    Filter high;

    const Filter& operator[](std::uint32_t bit) const { return bit == 0 ? low : high; }
    std::int32_t first() const { return std::min(low.offset, high.offset); }
    std::int32_t last() const { return std::max(low.last(), high.last()); }
};

inline Channels analysisChannels(const FilterBank& bank) {
    return {{bank.ha, bank.La, bank.oa}, {bank.ga, bank.Lb, bank.ob}};
}
inline Channels synthesisChannels(const FilterBank& bank) {
    return {{bank.hs, bank.Lb, bank.os}, {bank.gs, bank.La, bank.og}};
}

}  // namespace undula
