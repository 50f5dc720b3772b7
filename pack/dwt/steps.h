// One level of a filter bank along a signal: an analysis step splits n samples into ceil(n/2) low-pass
// and floor(n/2) high-pass coefficients, a synthesis step merges them again. Three treatments of the
// ends of the data: periodic, symmetric extension, and boundary filters on the interval.
//
// Steps read one place and write another; the two must not overlap. They need no memory of their own
// but the stack. "invalid level" when the signal is too short; nothing is then read or written.
//
// Sources: S. Mallat, A theory for multiresolution signal decomposition, IEEE PAMI 11 (1989)
// 674-693; C. Brislawn, Classification of nonexpansive symmetric extension transforms for
// multirate filter banks, ACHA 3 (1996) 337-357; A. Cohen, I. Daubechies, P. Vial, Wavelets on the
// interval and fast wavelet transforms, ACHA 1 (1993) 54-81.
#pragma once

#include <cstdint>

#include "filters/filter_bank.h"
#include "frame/errors.h"

namespace undula {

using AnalysisStep = Failure(const FilterBank& bank, const double* samples, std::uint32_t n, double* low,
                             double* high);
using SynthesisStep = Failure(const FilterBank& bank, const double* low, const double* high, std::uint32_t n,
                              double* samples);

// Any n >= 2. With an odd n the reconstruction is not exact.
AnalysisStep periodic_analysis_step;
SynthesisStep periodic_synthesis_step;

// Any n >= 2. Exact for symmetric filters.
AnalysisStep symmetric_analysis_step;
SynthesisStep symmetric_synthesis_step;

// Even n with n / 2 >= La, for a bank that has boundary filters.
AnalysisStep interval_analysis_step;
SynthesisStep interval_synthesis_step;

}  // namespace undula
