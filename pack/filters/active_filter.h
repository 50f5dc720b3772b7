// The wavelet selected last. Calls that use a filter select it first; others leave it alone.
#pragma once

#include "filters/wavelet.h"

namespace undula {

extern FilterBank ActiveFilter;

// Makes the wavelet the active one: stores all its answers in one go.
void select(const Wavelet& wavelet);

}  // namespace undula
