#include "support/filter_pair.h"

#include <utility>

namespace {

// The high-pass filter that goes with the other channel's low-pass filter: g[i] = +-f[N - 1 - i],
// where the signs alternate, and are - for the even i when N / 2 is even, for the odd i otherwise.
plain::Signal highPass(const plain::Signal& low, bool flip) {
    plain::Signal taps(low.rbegin(), low.rend());
    for (std::size_t i = 0; i < taps.size(); ++i) {
        const bool negative = (i % 2 == 0) == (low.size() / 2 % 2 == 0);
        if (negative != flip) taps[i] = -taps[i];
    }
    return taps;
}

int highPassOffset(const plain::Signal& low, int lowOffset) {
    return 2 - lowOffset - static_cast<int>(low.size());
}

}  // namespace

PairBank::PairBank(FilterPair pair)
    : pair_(std::move(pair)),
      analysisHigh_(highPass(pair_.synthesis, pair_.flipAnalysis)),
      synthesisHigh_(highPass(pair_.analysis, pair_.flipSynthesis)) {
    ha = pair_.analysis.data();
    hs = pair_.synthesis.data();
    ga = analysisHigh_.data();
    gs = synthesisHigh_.data();
    La = static_cast<std::int32_t>(pair_.analysis.size());
    Lb = static_cast<std::int32_t>(pair_.synthesis.size());
    oa = pair_.analysisOffset;
    os = pair_.synthesisOffset;
    ob = highPassOffset(pair_.synthesis, pair_.synthesisOffset);
    og = highPassOffset(pair_.analysis, pair_.analysisOffset);
}
