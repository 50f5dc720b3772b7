// The built-in filters by number, as functions and names ask for them. Each call makes its wavelet the
// active one. Failures name the number at fault: 1, or 2 for the second order.
#pragma once

#include "filters/active_filter.h"
#include "filters/registry.h"

namespace undula {

// The wavelet of a tabulated family with this number of taps.
Result<FilterBank> selectTabulated(FindByLength* find, double taps);

Result<FilterBank> selectBattleLemarie(double degree);

Result<FilterBank> selectBSpline(double m, double n);

}  // namespace undula
