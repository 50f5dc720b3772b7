#include "filters/active_filter.h"

#include <atomic>

namespace undula {

constinit FilterBank ActiveFilter;

namespace {

// Everything but which wavelet it is.
FilterBank bankOf(const Wavelet& wavelet) {
    return {
        .ha = wavelet.analysisLow(),
        .hs = wavelet.synthesisLow(),
        .ga = wavelet.analysisHigh(),
        .gs = wavelet.synthesisHigh(),
        .La = wavelet.analysisLowLength(),
        .Lb = wavelet.synthesisLowLength(),
        .oa = wavelet.analysisLowOffset(),
        .os = wavelet.synthesisLowOffset(),
        .ob = wavelet.analysisHighOffset(),
        .og = wavelet.synthesisHighOffset(),
        .cascadeA = wavelet.analysisCascade(),
        .cascadeS = wavelet.synthesisCascade(),
        .BLlo = wavelet.leftEdgeLow(),
        .BLhi = wavelet.leftEdgeHigh(),
        .BRlo = wavelet.rightEdgeLow(),
        .BRhi = wavelet.rightEdgeHigh(),
        .edgeAuxA = wavelet.edgeAuxA(),
        .edgeAuxB = wavelet.edgeAuxB(),
        .flipA = wavelet.analysisHighFlipped(),
        .flipS = wavelet.synthesisHighFlipped(),
    };
}

}  // namespace

// Another thread may fork the process meanwhile. While the bank is written no wavelet counts as selected,
// so that the child process does not go on with half a bank.
FilterBank select(const Wavelet& wavelet) {
    if (ActiveFilter.selected == &wavelet) return ActiveFilter;
    ActiveFilter.selected = nullptr;
    std::atomic_signal_fence(std::memory_order_seq_cst);
    ActiveFilter = bankOf(wavelet);
    std::atomic_signal_fence(std::memory_order_seq_cst);
    ActiveFilter.selected = &wavelet;
    return ActiveFilter;
}

Result<FilterBank> selectedBank() {
    if (ActiveFilter.selected == nullptr) return Code::FilterUnimplemented;
    return ActiveFilter;
}

}  // namespace undula
