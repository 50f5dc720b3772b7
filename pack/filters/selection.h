// The wavelet argument: from the arrays that a user writes to the active filter.
//
//   filter    one column: the low-pass filter of an orthonormal wavelet
//             two columns: the analysis and the synthesis low-pass filter of a biorthogonal pair,
//             the shorter one padded with zeros
//   offsets   one row, the start offset of each column
//   flips     one row, 1 where the column's high-pass filter is negated, else 0
//
// An array that equals a built-in filter is recognised as that filter; any other becomes a wavelet
// that is kept for reuse.
#pragma once

#include "efi/host.h"
#include "filters/active_filter.h"

namespace undula {

// The wavelet arguments of a call: the filter array at `position`, and after it the offsets and
// the flips where the user has written them.
struct WaveletArguments {
    int position;
    const aMatrix* filter;
    const aMatrix* offsets = nullptr;
    const aMatrix* flips = nullptr;
};

// Checks that the arrays are real, makes their wavelet the active one, and returns its bank. Offsets
// that are left out are those of the built-in filter, or zeros; so are the flips, but after offsets
// they are zeros. The active filter stays as it was when the arrays describe no wavelet or memory
// runs out.
Result<FilterBank> selectWavelet(EfiCallContext* context, const WaveletArguments& arguments);

}  // namespace undula
