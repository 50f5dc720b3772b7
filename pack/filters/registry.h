// The wavelets there are: the tabulated families by length, and the lists of those that were
// computed or given since the library was loaded. Process-wide; calls must not overlap.
#pragma once

#include <cstdint>

#include "filters/wavelet.h"

namespace undula {

// A low-pass filter to look for: taps that are finite numbers.
struct Taps {
    const double* values;
    std::int32_t count;
};

// The wavelets of a tabulated family, by half the number of taps.
template <class Family>
inline constinit const OrthonormalWavelet* tabulated[Family::longest / 2 + 1] = {};

// Lookups by length or order; null when there is none.
using FindByLength = const OrthonormalWavelet*(std::int64_t taps);
template <class Family>
const OrthonormalWavelet* findByLength(std::int64_t taps) {
    if (taps < 0 || taps > Family::longest || taps % 2 != 0) return nullptr;
    return tabulated<Family>[taps / 2];
}
const BattleLemarie* findBattleLemarie(std::int64_t degree);
const BSpline* findBSpline(std::int64_t m, std::int64_t n);

// Lookups by taps, equal within a relative 1e-12 each: the first of the tabulated families, in their
// order, and then of the Battle-Lemarie wavelets.
const OrthonormalWavelet* findOrthonormal(Taps low);
const BSpline* findBSpline(Taps lowA, Taps lowS);

// The same with the offsets and flips that the wavelet found must report; the wavelets that users gave
// are looked through last.
const OrthonormalWavelet* findOrthonormal(Taps low, const ChannelSettings& settings);
const BiorthogonalWavelet* findBiorthogonal(Taps lowA, Taps lowS, const ChannelSettings& settings);

// Whether a wavelet is the one described.
bool matches(const Wavelet& wavelet, Taps low, const ChannelSettings& settings);
bool matches(const Wavelet& wavelet, Taps lowA, Taps lowS, const ChannelSettings& settings);

// Adds a wavelet to its family or at the head of its list. It must live as long as the library.
template <class Family>
void add(const Family& wavelet) {
    tabulated<Family>[wavelet.analysisLowLength() / 2] = &wavelet;
}
void add(const BSpline& wavelet);
void add(BattleLemarie& wavelet);
void add(UserDefinedOrthonormal& wavelet);
void add(UserDefinedBiorthogonal& wavelet);

}  // namespace undula
