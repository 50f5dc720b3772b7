// The steps along signals: rows near the ends one by one, those between in long runs.
#include "dwt/rows.h"
#include "dwt/steps.h"

namespace undula {

namespace {

// Outputs that are computed at once, so that the samples, parted by parity, stay in the first cache.
constexpr Index runLength = 256;
// The farthest that the samples of a row may lie apart in a run.
constexpr Index widestRow = 256;

// The inner rows. A filter moves by two samples an output, so that over the samples of one parity it meets
// consecutive numbers.
void analyseInner(const AnalysisRows& rows, const double* x, double* low, double* high) {
    alignas(64) double even[runLength + widestRow / 2];
    alignas(64) double odd[runLength + widestRow / 2];
    Row row;
    rows.fillInner([&](Index d) { return (d % 2 == 0 ? even : odd) + d / 2; }, row);
    const Index span = rows.last() - rows.first() + 1;
    for (Index k = rows.begin(); k < rows.end(); k += runLength) {
        const Index count = std::min(runLength, rows.end() - k);
        kernels().split(x + rows.first() + 2 * k, static_cast<std::size_t>(2 * (count - 1) + span), even,
                        odd);
        kernels().sumPairs(row.terms, row.count, low + k, high + k, static_cast<std::size_t>(count));
    }
}

// The inner rows of filters that lie far apart, one by one.
void analyseScattered(const AnalysisRows& rows, const double* x, double* low, double* high) {
    Row row;
    for (Index k = rows.begin(); k < rows.end(); ++k) {
        rows.fillInner([&](Index d) { return x + rows.first() + 2 * k + d; }, row);
        kernels().sumPairs(row.terms, row.count, low + k, high + k, 1);
    }
}

Failure analyse(const Ends& ends, const FilterBank& bank, const double* x, std::uint32_t n, double* low,
                double* high) {
    if (n < ends.shortest(bank)) return Code::InvalidLevel;
    const AnalysisRows rows(ends.analysis(bank, n), n);
    if (rows.last() - rows.first() < widestRow) {
        analyseInner(rows, x, low, high);
    } else {
        analyseScattered(rows, x, low, high);
    }
    analyseEnds(
        rows, [x](Index p) { return x + p; }, [low](Index k) { return low + k; },
        [high](Index k) { return high + k; }, 1);
    return {};
}

Failure synthesise(const Ends& ends, const FilterBank& bank, const double* low, const double* high,
                   std::uint32_t n, double* x) {
    if (n < ends.shortest(bank)) return Code::InvalidLevel;
    const SynthesisRows rows(ends.synthesis(bank, n), n);
    const auto at = [=](Channel channel, Index k) { return (channel == Channel::Low ? low : high) + k; };
    const auto sampleAt = [x](Index p) { return x + p; };
    if (rows.begin() < rows.end()) {
        Row row;
        rows.fill(rows.begin(), at, row);
        kernels().sumInterleaved(row.terms, row.count, x + 2 * rows.begin(),
                                 static_cast<std::size_t>(rows.end() - rows.begin()));
    }
    double scratch[2];
    SynthesisOfEnds(rows, at, sampleAt, 1, scratch).run();
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
