// Symmetric continuation of the coefficients of a packet.
//
// Source: C. Brislawn, Classification of nonexpansive symmetric extension transforms for multirate
// filter banks, ACHA 3 (1996) 337-357.
#pragma once

#include <cstddef>
#include <cstdint>

#include "filters/filter_bank.h"

namespace undula {

// How a packet of `length` coefficients goes on: an explicit zero or none, then its mirror image, with
// a sign, from one coefficient down to another.
struct PacketContinuation {
    std::int64_t length;
    std::int64_t from;
    std::int64_t to;
    double sign;
    bool zeroFirst;

    // Coefficients until the sequence repeats, at least 1.
    std::int64_t period() const;
    // Which coefficient stands at a place of the period; -1 for the zero.
    std::int64_t source(std::int64_t place) const;
    double signAt(std::int64_t place) const { return place < length ? 1.0 : sign; }
};

// The continuation of packet `index` of a level of n samples, for the wavelet's synthesis filters.
PacketContinuation continuationOf(const FilterBank& bank, std::uint64_t n, std::uint32_t level,
                                  std::uint32_t index);

}  // namespace undula
