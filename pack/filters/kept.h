// Wavelets that are made during a call and kept from then on.
#pragma once

#include <cstdint>

#include "filters/registry.h"
#include "frame/floating_point.h"
#include "frame/memory.h"

namespace undula {

// Makes a wavelet that lives in `storage` and enters it into its list; `construct` answers it, or
// null. Null when memory runs out, or when the arithmetic of the construction faults: the same call
// must fault again.
template <class Kept, class Construct>
const Kept* keep(Array<double>& storage, Construct construct) {
    const FaultWatch watch;
    Kept* wavelet = storage ? construct() : nullptr;
    if (wavelet == nullptr) return nullptr;
    if (watch.faulted()) {
        delete wavelet;
        return nullptr;
    }
    storage.release();
    add(*wavelet);
    return wavelet;
}

}  // namespace undula
