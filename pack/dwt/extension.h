// How data goes on beyond its ends.
//
// Source: C. Brislawn, Classification of nonexpansive symmetric extension transforms for multirate
// filter banks, ACHA 3 (1996) 337-357.
#pragma once

#include <algorithm>
#include <cstdint>

#include "frame/integers.h"

namespace undula {

// The position among n samples that stands for one outside.
using SampleExtension = std::int64_t(std::int64_t position, std::int64_t n);

inline std::int64_t periodicSample(std::int64_t position, std::int64_t n) {
    return modulo(position, n);
}

// Mirrored about the end samples.
inline std::int64_t wholeSample(std::int64_t position, std::int64_t n) {
    const std::int64_t folded = modulo(position, 2 * n - 2);
    return std::min(folded, 2 * n - 2 - folded);
}

// Mirrored between the end samples and their repetitions.
inline std::int64_t halfSample(std::int64_t position, std::int64_t n) {
    const std::int64_t folded = modulo(position, 2 * n);
    return std::min(folded, 2 * n - 1 - folded);
}

// How the `length` coefficients of a channel go on: an explicit zero or none, then their mirror image,
// with a sign, from one coefficient down to another.
struct CoefficientExtension {
    std::int64_t length;
    std::int64_t from = -1;
    std::int64_t to = 0;
    double sign = 1.0;
    bool zeroFirst = false;

    // Coefficients until the sequence repeats, at least 1.
    std::int64_t period() const {
        const std::int64_t mirrored = std::max<std::int64_t>(0, from - to + 1);
        return std::max<std::int64_t>(1, length + zeroFirst + mirrored);
    }
    // Which coefficient stands at a place of the period; -1 for the zero.
    std::int64_t source(std::int64_t place) const {
        if (place < length) return place;
        if (zeroFirst && place == length) return -1;
        return from - (place - length - zeroFirst);
    }
    double signAt(std::int64_t place) const { return place < length ? 1.0 : sign; }
};

// Of the coefficients of symmetrically extended data, of which an odd or an even number was split, by
// filters that are symmetric about a tap (whole) or between two.
inline CoefficientExtension symmetricExtension(std::int64_t length, bool lowPass, bool oddSplit, bool whole) {
    if (lowPass) return {length, length - 1 - oddSplit, whole ? 1 : 0};
    if (whole) return {length, length - 2 + oddSplit, 0};
    return {length, length - 1, 0, -1.0, oddSplit};
}

}  // namespace undula
