// Wavelets that are made during a call and kept from then on.
#pragma once

#include <cstdint>

#include "filters/registry.h"
#include "frame/floating_point.h"
#include "frame/memory.h"

namespace undula {

// Makes a wavelet that lives in `storage` and enters it into its list; `construct` returns it, or
// null. Null when memory runs out, or when the arithmetic of the construction faults: the same call
// must fault again.
template <class Kept, class Construct>
const Kept* keep(Array<double>& storage, Construct construct) {
    // Faults that the pack, or whoever calls a worker without the frame, has raised before do not count.
    HostServiceScope constructing;
    Kept* wavelet = storage ? construct() : nullptr;
    const bool faulted = raisedFaults() != 0;
    constructing.keepFaults();
    if (wavelet == nullptr) return nullptr;
    if (faulted) {
        delete wavelet;
        return nullptr;
    }
    storage.release();
    add(*wavelet);
    return wavelet;
}

}  // namespace undula
