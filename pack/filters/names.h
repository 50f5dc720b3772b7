// Wavelets by name: letters for the family and digits for the length or the orders.
//
//   d, daub, daublet    extremal phase, by the number of taps    daub4
//   s, symm, symmlet    least asymmetric, by the number of taps  s8
//   c, coif, coiflet    coiflets, by the number of taps          coif12
//   bl                  Battle-Lemarie, by the spline degree     bl3
//   bs, Bspline         biorthogonal splines, by the two orders  bs13
//   haar                the Haar filter
#pragma once

#include "efi/host.h"

namespace undula {

// The filter array of the named wavelet, which is then the active one; or an error value, about
// argument 1 unless memory ran out.
Anyval* selectWaveletString(EfiCallContext* context, const aString* text);

}  // namespace undula
