// One level of a filter bank: an analysis step splits n samples into ceil(n/2) low-pass and
// floor(n/2) high-pass coefficients, a synthesis step merges them again. Three treatments of the
// ends of the data: periodic, symmetric extension, and boundary filters on the interval.
//
// Steps work in place, on several signals side by side. The low-pass part comes first, or with
// `swap` the high-pass part. Failures: "invalid level" when the signal is too short, "out of memory";
// the data is then untouched.
//
// Sources: S. Mallat, A theory for multiresolution signal decomposition, IEEE PAMI 11 (1989)
// 674-693; C. Brislawn, Classification of nonexpansive symmetric extension transforms for
// multirate filter banks, ACHA 3 (1996) 337-357; A. Cohen, I. Daubechies, P. Vial, Wavelets on the
// interval and fast wavelet transforms, ACHA 1 (1993) 54-81.
#pragma once

#include <cstddef>
#include <cstdint>

#include "filters/filter_bank.h"
#include "frame/errors.h"
#include "frame/memory.h"

namespace undula {

// Signals side by side: sample p of signal s is origin[p * stride + s].
struct Lines {
    double* origin;
    std::ptrdiff_t stride = 1;
    std::ptrdiff_t count = 1;
};

using Step = Failure(const FilterBank& bank, const Lines& lines, std::uint32_t n, bool swap,
                     Workspace& workspace);

// Any n >= 2. With an odd n the reconstruction is not exact.
Step periodic_analysis_step;
Step periodic_synthesis_step;

// Any n >= 2. Exact for symmetric filters.
Step symmetric_analysis_step;
Step symmetric_synthesis_step;

// Even n with n / 2 >= La, for a bank that has boundary filters.
Step interval_analysis_step;
Step interval_synthesis_step;

}  // namespace undula
