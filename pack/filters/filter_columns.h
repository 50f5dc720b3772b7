// The active filter as the filter functions return it.
#pragma once

#include "efi/host.h"

namespace undula {

// The analysis low-pass filter as a column, or an error value.
aMatrix* activeFilterColumn(EfiCallContext* context);

}  // namespace undula
