// The wavelet argument: from the arrays that a user writes to the active filter.
//
//   filter    one column: the low-pass filter of an orthonormal wavelet
//             two columns: the analysis and the synthesis low-pass filter of a biorthogonal pair,
//             the shorter one padded with zeros
//   offsets   one row, the start offset of each column
//   flips     one row, 1 where the column's high-pass filter is negated, else 0
//
// An array that equals a built-in filter is recognised as that filter; any other becomes a wavelet
// of the user's, kept for reuse.
#pragma once

#include "efi/host.h"
#include "filters/wavelet.h"
#include "frame/errors.h"

namespace undula {

// Selects the wavelet of the arrays; null, with the active filter unchanged, when they describe
// none or memory runs out.
const Wavelet* selectFilterArray(const aMatrix* filter, const aMatrix* offsets, const aMatrix* flips);

// The same with the offsets and flips of the built-in filter, or zeros for a filter of the user's.
const Wavelet* selectFilterArrayDefault(const aMatrix* filter);

// The wavelet arguments of a call: the filter array at `position`, and after it the offsets and
// the flips where the user has written them.
struct WaveletArguments {
    int position;
    const aMatrix* filter;
    const aMatrix* offsets = nullptr;
    const aMatrix* flips = nullptr;
};

// Checks that the arrays are real, and selects. Flips that are left out after offsets are zeros.
Failure selectWavelet(EfiCallContext* context, const WaveletArguments& arguments);

}  // namespace undula
