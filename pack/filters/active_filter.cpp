#include "filters/active_filter.h"

namespace undula {

constinit FilterBank ActiveFilter;

FilterBank select(const Wavelet& wavelet) {
    if (ActiveFilter.selected == &wavelet) return ActiveFilter;
    ActiveFilter = {
        .selected = &wavelet,
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
    return ActiveFilter;
}

Result<FilterBank> selectedBank() {
    if (ActiveFilter.selected == nullptr) return Code::FilterUnimplemented;
    return ActiveFilter;
}

}  // namespace undula
