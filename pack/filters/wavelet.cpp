#include "filters/wavelet.h"

#include <algorithm>
#include <functional>

#include "filters/edges.h"

namespace undula {

namespace {

// Writes the high-pass filter that belongs to a low-pass filter of the same length: the taps in
// reverse order, every second one negated, so that for an even number of taps the last one is
// positive where the low-pass filter's first is.
void deriveHighPass(const double* low, std::int32_t taps, double* high) {
    std::reverse_copy(low, low + taps, high);
    for (std::int32_t i = taps / 2 % 2; i < taps; i += 2) high[i] = -high[i];
}

void negate(double* filter, std::int32_t taps) {
    std::transform(filter, filter + taps, filter, std::negate<>());
}

}  // namespace

OrthonormalWavelet::OrthonormalWavelet(const double* low, std::int32_t taps, double* work)
    : h(low), g(work), cascade(work + taps), L(taps) {
    deriveHighPass(h, L, g);
    buildCascade(h, L, cascade);
}

IntervalWavelet::IntervalWavelet(const double* low, std::int32_t taps, double* work, bool withEdges)
    : OrthonormalWavelet(low, taps, work), edges(withEdges ? edgeFilters(taps) : EdgeFilters()) {}

UserDefinedOrthonormal::UserDefinedOrthonormal(const double* low, std::int32_t taps, double* work,
                                               std::int32_t start, bool flip)
    : OrthonormalWavelet(low, taps, work), offset(start), flipHigh(flip) {
    if (flip) negate(g, L);
}

BiorthogonalWavelet::BiorthogonalWavelet(const double* lowA, std::int32_t tapsA, const double* lowS,
                                         std::int32_t tapsS, double* work)
    : ha(lowA),
      ga(work),
      hs(lowS),
      gs(ga + tapsS),
      cascadeA(gs + tapsA),
      cascadeS(cascadeA + cascadeLength(tapsA)),
      La(tapsA),
      Lb(tapsS) {
    deriveHighPass(hs, Lb, ga);
    deriveHighPass(ha, La, gs);
    buildCascade(ha, La, cascadeA);
    buildCascade(hs, Lb, cascadeS);
}

UserDefinedBiorthogonal::UserDefinedBiorthogonal(const double* lowA, std::int32_t tapsA, const double* lowS,
                                                 std::int32_t tapsS, double* work,
                                                 const ChannelSettings& channels)
    : BiorthogonalWavelet(lowA, tapsA, lowS, tapsS, work), settings(channels) {
    if (settings.flip[0]) negate(ga, Lb);
    if (settings.flip[1]) negate(gs, La);
}

}  // namespace undula
