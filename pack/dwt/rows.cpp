#include "dwt/rows.h"

#include <utility>

namespace undula {

AnalysisRows::AnalysisRows(const AnalysisEnds& dataEnds, Index samples)
    : n(samples),
      channels(dataEnds.channels),
      extension(dataEnds.extension),
      edges(dataEnds.edges),
      interiorBegin(std::clamp(ceilHalf(-first()), edges.rows, count())),
      interiorEnd(std::min(floorHalf(n - 1 - last()) + 1, floorHalf(n) - edges.rows)) {
    const auto& [low, high] = channels;
    Index i = 0;
    Index j = 0;
    while (i < low.count || j < high.count) {
        const Index atLow = low.offset + i;
        const Index atHigh = high.offset + j;
        const bool takeLow = i < low.count && (j == high.count || atLow <= atHigh);
        const bool takeHigh = j < high.count && (i == low.count || atHigh <= atLow);
        taps[tapCount++] = {takeLow ? atLow : atHigh, takeLow ? low.taps[i] : 0.0,
                            takeHigh ? high.taps[j] : 0.0,
                            !takeHigh  ? Term::First
                            : !takeLow ? Term::Second
                                       : Term::Both};
        i += takeLow;
        j += takeHigh;
    }
}

SynthesisRows::SynthesisRows(const SynthesisEnds& dataEnds, Index samples)
    : n(samples),
      channels(dataEnds.channels),
      phase(modulo(channels.low.offset, 2)),
      low(dataEnds.low),
      high(dataEnds.high),
      period(dataEnds.period),
      edges(dataEnds.edges),
      nearestShift(ceilHalf(channels.first() + phase - 1)),
      farthestShift(floorHalf(channels.last() + phase)),
      interiorBegin(
          std::clamp(std::max(farthestShift + edges.rows, ceilHalf(edges.reach() + phase)), phase, count())),
      interiorEnd(std::min(high.length + nearestShift - edges.rows, floorHalf(n + phase))) {
    const auto shiftsOf = [this](const Filter& filter) {
        return std::pair(ceilHalf(filter.offset + phase - 1), floorHalf(filter.last() + phase));
    };
    const auto [lowNearest, lowFarthest] = shiftsOf(channels.low);
    const auto [highNearest, highFarthest] = shiftsOf(channels.high);
    Index i = lowFarthest;
    Index j = highFarthest;
    while (i >= lowNearest || j >= highNearest) {
        const bool takeLow = i >= lowNearest && (j < highNearest || i >= j);
        const bool takeHigh = j >= highNearest && (i < lowNearest || j >= i);
        if (takeLow) addTap(i--, Channel::Low, channels.low);
        if (takeHigh) addTap(j--, Channel::High, channels.high);
    }
}

void SynthesisRows::gather(Channel channel, const double* from, Index first, Index count, double* out) const {
    const CoefficientExtension& extension = channel == Channel::Low ? low : high;
    const Index before = std::clamp(-first, Index{0}, count);
    const Index copied =
        std::clamp(std::min(extension.length, first + count) - (first + before), Index{0}, count);
    std::fill_n(out, before, 0.0);
    std::copy_n(from + first + before, copied, out + before);
    const Index wholePeriod = extension.period();
    for (Index i = before + copied; i < count; ++i) {
        const Index k = first + i;
        const Index source = k < wholePeriod ? extension.source(k) : -1;
        out[i] = source < 0 ? 0.0 : extension.sign * from[source];
    }
}

void SynthesisRows::addTap(Index shift, Channel channel, const Filter& filter) {
    const Index tap = position(shift) - filter.offset;
    const auto has = [&](Index i) { return 0 <= i && i < filter.count; };
    const double first = has(tap) ? filter.taps[tap] : 0.0;
    const double second = has(tap + 1) ? filter.taps[tap + 1] : 0.0;
    if (!has(tap) && !has(tap + 1)) return;
    taps[tapCount++] = {shift, channel, first, second,
                        !has(tap + 1) ? Term::First
                        : !has(tap)   ? Term::Second
                                      : Term::Both};
}

}  // namespace undula
