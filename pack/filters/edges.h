// The boundary filters of the interval.
#pragma once

#include "filters/wavelet.h"

namespace undula {

// Those for a wavelet of so many taps; all null without. Only the families whose interior filters
// belong to them may carry them: 4 and 6 taps with extremal phase, 8 to 16 least asymmetric.
EdgeFilters edgeFilters(std::int32_t taps);

}  // namespace undula
