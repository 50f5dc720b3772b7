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

// Lookups by length or order; null when there is none.
const OrthonormalWavelet* findDaublet(std::int64_t taps);
const OrthonormalWavelet* findSymmlet(std::int64_t taps);
const OrthonormalWavelet* findCoiflet(std::int64_t taps);
const BattleLemarie* findBattleLemarie(std::int64_t order);
const BSpline* findBSpline(std::int64_t m, std::int64_t n);

// Lookups by taps, equal within a relative 1e-12 each: the first of the families in the order
// Daublet, Symmlet, Coiflet, BattleLemarie.
const OrthonormalWavelet* findOrthonormal(Taps low);
const BSpline* findBSpline(Taps lowA, Taps lowS);

// The same with the offsets and flips that the wavelet found must report; the user's own wavelets
// are looked through after the families.
const OrthonormalWavelet* findOrthonormal(Taps low, const ChannelSettings& settings);
const BiorthogonalWavelet* findBiorthogonal(Taps lowA, Taps lowS, const ChannelSettings& settings);

// Whether a wavelet is the one described.
bool matches(const Wavelet& wavelet, Taps low, const ChannelSettings& settings);
bool matches(const Wavelet& wavelet, Taps lowA, Taps lowS, const ChannelSettings& settings);

// Adds a wavelet to its family or at the head of its list. It must live as long as the library.
void add(const Daublet& wavelet);
void add(const Symmlet& wavelet);
void add(const Coiflet& wavelet);
void add(const BSpline& wavelet);
void add(BattleLemarie& wavelet);
void add(UserDefinedOrthonormal& wavelet);
void add(UserDefinedBiorthogonal& wavelet);

}  // namespace undula
