#include "dwt/signal_steps.h"

#include "dwt/steps.h"

namespace undula {

SignalAnalysis::SignalAnalysis(const Ends& ends, const FilterBank& bank, Index n)
    : rows(ends.analysis(bank, n), n) {
    if (!isNarrow()) return;
    rows.fillInner([this](Index d) { return (d % 2 == 0 ? even : odd) + d / 2; }, inner);
}

void SignalAnalysis::run(const double* x, double* low, double* high) {
    const Index edges = rows.edgeRows();
    const Index pairs = floorHalf(rows.samples()) - edges;
    for (Index k = 0; k < edges; ++k) runRow(x, k, low, high);
    if (isNarrow()) {
        runPairs(x, edges, pairs, low, high);
    } else {
        runScattered(x, edges, pairs, low, high);
    }
    for (Index k = pairs; k < rows.count(); ++k) runRow(x, k, low, high);
}

// Whether a run of rows finds room.
bool SignalAnalysis::isNarrow() const {
    return rows.last() - rows.first() < widestRow;
}

// A filter moves by two samples an output, so that over the samples of one parity it meets consecutive
// numbers.
void SignalAnalysis::runPairs(const double* x, Index from, Index to, double* low, double* high) {
    const Index span = rows.last() - rows.first() + 1;
    for (Index k = from; k < to; k += runLength) {
        const Index count = std::min(runLength, to - k);
        const Index first = 2 * k + rows.first();
        const Index length = 2 * (count - 1) + span;
        const bool inside = first >= 0 && first + length <= rows.samples();
        runTogether(inside ? x + first : gathered(x, first, length), count, low + k, high + k);
    }
}

void SignalAnalysis::runInner(const double* x, Index count, double* low, double* high) {
    for (Index k = 0; k < count; k += runLength)
        runTogether(x + 2 * k, std::min(runLength, count - k), low + k, high + k);
}

void SignalAnalysis::runTogether(const double* x, Index count, double* low, double* high) {
    const Index length = 2 * (count - 1) + rows.last() - rows.first() + 1;
    kernels().split(x, static_cast<std::size_t>(length), even, odd);
    kernels().sumPairs(inner.terms, inner.count, low, high, static_cast<std::size_t>(count));
}

// Samples `first` to `first` + `count` - 1 of the extended signal.
const double* SignalAnalysis::gathered(const double* x, Index first, Index count) {
    const Index n = rows.samples();
    const Index begin = std::clamp(Index{0}, first, first + count);
    const Index end = std::clamp(n, begin, first + count);
    for (Index p = first; p < begin; ++p) samples[p - first] = x[rows.inside(p)];
    std::copy_n(x + begin, end - begin, samples + (begin - first));
    for (Index p = end; p < first + count; ++p) samples[p - first] = x[rows.inside(p)];
    return samples;
}

// The rows of filters that lie far apart, one by one.
void SignalAnalysis::runScattered(const double* x, Index from, Index to, double* low, double* high) {
    for (Index k = from; k < to; ++k) runRow(x, k, low, high);
}

void SignalAnalysis::runRow(const double* x, Index k, double* low, double* high) {
    analyseRow(
        rows, k, [x](Index p) { return x + p; }, low + k, high + k, 1);
}

SignalSynthesis::SignalSynthesis(const Ends& ends, const FilterBank& bank, Index n)
    : rows(ends.synthesis(bank, n), n),
      shortEnds(rows.farthest() - rows.nearest() <= widestRow &&
                rows.begin() - rows.pairOf(rows.before().first) <= mostEnd &&
                backEnd() - backPair() <= mostEnd &&
                rows.pairOf(rows.after().last) + 1 - rows.pairOf(rows.after().first) <= mostEnd) {
    if (shortEnds) rows.fillInner(window[0], window[1], rows.farthest(), extended);
}

void SignalSynthesis::run(const double* low, const double* high, double* x) {
    if (rows.begin() < rows.end()) {
        Row row;
        rows.fillInner(low, high, rows.begin(), row);
        kernels().sumInterleaved(row.terms, row.count, x + rows.position(rows.begin()),
                                 static_cast<std::size_t>(rows.end() - rows.begin()));
    }
    double scratch[2];
    const auto at = [=](Channel channel, Index k) { return (channel == Channel::Low ? low : high) + k; };
    SynthesisOfEnds ends(
        rows, at, [x](Index p) { return x + p; }, 1, scratch);
    if (!shortEnds) {
        ends.run();
    } else if (rows.edgeFilters().rows > 0) {
        double values[2 * mostEnd];
        ends.addOntoLeftEdge();
        runBack(low, high, values, x);
        ends.addRightEdge();
    } else {
        runEnds(low, high, x);
    }
}

// Of periodic data what lies behind the end follows on the last pairs, and is computed with them.
bool SignalSynthesis::goesOnBehind() const {
    return rows.pairOf(rows.after().first) <= rows.count();
}
Index SignalSynthesis::backPair() const {
    return std::min(rows.end(), rows.pairOf(rows.after().first));
}
Index SignalSynthesis::backEnd() const {
    return goesOnBehind() ? std::max(rows.count(), rows.pairOf(rows.after().last) + 1) : rows.count();
}

void SignalSynthesis::runEnds(const double* low, const double* high, double* x) {
    double values[2 * mostEnd];
    double front[2 * mostEnd];
    const Index n = rows.samples();
    const auto [first, last] = rows.before();
    const Index frontPair = rows.pairOf(first);
    const double* atZero = front - rows.position(frontPair);
    runExtended(low, high, frontPair, rows.begin(), front);
    std::copy_n(atZero, std::min(rows.position(rows.begin()), n), x);

    runBack(low, high, values, x);
    const auto fold = [&](Index p, double value) {
        const Index target = rows.target(p);
        if (target < n) x[target] += value;
    };
    for (Index p = first; p <= last; ++p) fold(p, atZero[p]);

    const auto [from, to] = rows.after();
    Index pair = backPair();
    if (!goesOnBehind()) {
        pair = rows.pairOf(from);
        runExtended(low, high, pair, rows.pairOf(to) + 1, values);
    }
    for (Index p = to; p >= from; --p) fold(p, values[p - rows.position(pair)]);
}

void SignalSynthesis::runBack(const double* low, const double* high, double* values, double* x) {
    runExtended(low, high, backPair(), backEnd(), values);
    // Of short data even the first of these pairs may lie behind the end.
    const Index inside = std::min(rows.position(backPair()), rows.samples());
    std::copy_n(values, rows.samples() - inside, x + inside);
}

void SignalSynthesis::runExtended(const double* low, const double* high, Index from, Index to, double* out) {
    if (from >= to) return;
    const Index first = from - rows.farthest();
    const Index count = to - from + rows.farthest() - rows.nearest();
    rows.gather(Channel::Low, low, first, count, window[0]);
    rows.gather(Channel::High, high, first, count, window[1]);
    kernels().sumInterleaved(extended.terms, extended.count, out, static_cast<std::size_t>(to - from));
}

namespace {

Failure analyse(const Ends& ends, const FilterBank& bank, const double* x, std::uint32_t n, double* low,
                double* high) {
    if (n < ends.shortest(bank)) return Code::InvalidLevel;
    SignalAnalysis(ends, bank, n).run(x, low, high);
    return {};
}

Failure synthesise(const Ends& ends, const FilterBank& bank, const double* low, const double* high,
                   std::uint32_t n, double* x) {
    if (n < ends.shortest(bank)) return Code::InvalidLevel;
    SignalSynthesis(ends, bank, n).run(low, high, x);
    return {};
}

}  // namespace

Failure periodic_analysis_step(const FilterBank& bank, const double* samples, std::uint32_t n, double* low,
                               double* high) {
    return analyse(periodicEnds, bank, samples, n, low, high);
}

Failure periodic_synthesis_step(const FilterBank& bank, const double* low, const double* high,
                                std::uint32_t n, double* samples) {
    return synthesise(periodicEnds, bank, low, high, n, samples);
}

Failure symmetric_analysis_step(const FilterBank& bank, const double* samples, std::uint32_t n, double* low,
                                double* high) {
    return analyse(symmetricEnds, bank, samples, n, low, high);
}

Failure symmetric_synthesis_step(const FilterBank& bank, const double* low, const double* high,
                                 std::uint32_t n, double* samples) {
    return synthesise(symmetricEnds, bank, low, high, n, samples);
}

Failure interval_analysis_step(const FilterBank& bank, const double* samples, std::uint32_t n, double* low,
                               double* high) {
    return analyse(intervalEnds, bank, samples, n, low, high);
}

Failure interval_synthesis_step(const FilterBank& bank, const double* low, const double* high,
                                std::uint32_t n, double* samples) {
    return synthesise(intervalEnds, bank, low, high, n, samples);
}

}  // namespace undula
