// The boundary filters of the interval.
#pragma once

#include "filters/wavelet.h"

namespace undula {

// Those of the wavelet with this number of taps, even and from 4 to 16. Only the families whose interior
// filters belong to them may carry them: 4 and 6 taps with extremal phase, 8 to 16 least asymmetric.
EdgeFilters edgeFilters(std::int32_t taps);

}  // namespace undula
