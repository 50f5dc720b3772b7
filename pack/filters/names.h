// Wavelets by name: letters for the family and digits for the length or the orders.
//
//   d, daub, daublet    extremal phase, by the number of taps    daub4
//   s, symm, symmlet    least asymmetric, by the number of taps  s8
//   c, coif, coiflet    coiflets, by the number of taps          coif12
//   bl                  Battle-Lemarie, by the spline degree     bl3
//   bs, Bspline         biorthogonal splines, by the two orders  bs13
//   haar                the Haar filter
#pragma once

#include "efi/values.h"
#include "filters/active_filter.h"

namespace undula {

// Makes the named wavelet the active one. Failures are about argument 1, unless memory ran out.
Result<FilterBank> selectWaveletString(const aString* text);

}  // namespace undula
