// The wavelet selected last. Selection alone writes it, and hands every caller a bank of its own:
// whatever the host does while it is asked something, a call goes on with its bank.
#pragma once

#include "filters/wavelet.h"
#include "frame/errors.h"

namespace undula {

extern FilterBank ActiveFilter;

// Makes the wavelet the active one, and returns its bank.
FilterBank select(const Wavelet& wavelet);

// The bank of the wavelet selected last; "filter unimplemented" before the first selection.
Result<FilterBank> selectedBank();

}  // namespace undula
