// The rows of the filter-bank matrices: which samples an output is a sum of, and with which weights.
//
// Outputs come in pairs: the low-pass and the high-pass coefficient of an analysis, the two samples of a
// synthesis. Rows inside the data are all alike; near the ends samples are extended, or boundary
// filters stand there.
#pragma once

#include "dwt/ends.h"
#include "dwt/kernels.h"

namespace undula {

// The most terms of a row: all taps of both filters.
inline constexpr int mostTerms = 2 * mostTaps;

// A row of terms, the sources of which are still to be filled in.
struct Row {
    Term terms[mostTerms];
    int count = 0;

    void add(const double* source, double first, double second, Term::Sums sums) {
        terms[count++] = {source, first, second, sums};
    }
};

class AnalysisRows {
 public:
    AnalysisRows(const AnalysisEnds& dataEnds, Index samples);

    Index samples() const { return n; }
    // Rows at either end that are boundary filters.
    Index edgeRows() const { return edges.rows; }
    // Output pairs; of an odd number of samples the last one is a low-pass coefficient alone.
    Index count() const { return ceilHalf(n); }
    bool isPair(Index k) const { return 2 * k + 1 < n; }

    // Rows `begin` to `end` - 1 meet, of pair k, the samples 2k + first() to 2k + last() with the taps.
    Index begin() const { return interiorBegin; }
    Index end() const { return std::max(interiorBegin, interiorEnd); }
    Index first() const { return channels.first(); }
    Index last() const { return channels.last(); }

    // The sample that stands for one at any position.
    Index inside(Index position) const {
        return position < 0 || position >= n ? extension(position, n) : position;
    }

    // The taps of every inner row; at(d) is where the sample 2k + first() + d stands.
    template <class At>
    void fillInner(At at, Row& row) const {
        row.count = 0;
        for (int i = 0; i < tapCount; ++i)
            row.add(at(taps[i].offset - first()), taps[i].low, taps[i].high, taps[i].sums);
    }

    // The row of a pair; sampleAt(p) is where sample p stands, 0 <= p < n.
    template <class At>
    void fill(Index k, At sampleAt, Row& row) const {
        row.count = 0;
        if (k < edges.rows) {
            fillEdge(edges.bank->BLlo[k], edges.bank->BLhi[k], k, sampleAt, row);
        } else if (edges.rows > 0 && k >= count() - edges.rows) {
            const Index fromEnd = count() - 1 - k;
            const auto mirrored = [&](Index t) { return sampleAt(n - 1 - t); };
            fillEdge(edges.bank->BRlo[fromEnd], edges.bank->BRhi[fromEnd], fromEnd, mirrored, row);
        } else {
            fillTaps(k, sampleAt, row);
        }
    }

 private:
    // A tap of either filter, or of both, at an offset from sample 2k.
    struct Tap {
        Index offset;
        double low;
        double high;
        Term::Sums sums;
    };

    template <class At>
    void fillEdge(const double* low, const double* high, Index index, At sampleAt, Row& row) const {
        for (Index t = 0; t < edges.reach(index); ++t) row.add(sampleAt(t), low[t], high[t], Term::Both);
    }

    template <class At>
    void fillTaps(Index k, At sampleAt, Row& row) const {
        const bool pair = isPair(k);
        for (int i = 0; i < tapCount; ++i) {
            const auto& [offset, low, high, sums] = taps[i];
            if (!pair && sums == Term::Second) continue;
            row.add(sampleAt(inside(2 * k + offset)), low, high, pair ? sums : Term::First);
        }
    }

    Index n;
    Channels channels;
    SampleExtension* extension;
    EdgeFilterRows edges;
    Index interiorBegin;
    Index interiorEnd;
    Tap taps[mostTerms];
    int tapCount = 0;
};

// One pair of outputs, of samples of `width` numbers; sampleAt(p) is where sample p stands.
template <class SampleAt>
void analyseRow(const AnalysisRows& rows, Index k, SampleAt sampleAt, double* low, double* high,
                std::size_t width) {
    Row row;
    rows.fill(k, sampleAt, row);
    kernels().sumPairs(row.terms, row.count, low, rows.isPair(k) ? high : nullptr, width);
}

enum class Channel { Low, High };

class SynthesisRows {
 public:
    SynthesisRows(const SynthesisEnds& dataEnds, Index samples);

    Index samples() const { return n; }
    // Pair q are the samples at position(q) and behind it, so that a filter of even length has two taps for
    // every pair that it meets. Pair 0 may lack its first sample, the last pair its second.
    Index count() const { return pairOf(n - 1) + 1; }
    Index position(Index q) const { return 2 * q - phase; }
    Index pairOf(Index position) const { return floorHalf(position + phase); }
    Index coefficients(Channel channel) const { return channel == Channel::Low ? low.length : high.length; }

    // Rows `begin` to `end` - 1 meet, at pair q, the coefficients q - farthest() to q - nearest().
    Index begin() const { return interiorBegin; }
    Index end() const { return std::max(interiorBegin, interiorEnd); }
    Index nearest() const { return nearestShift; }
    Index farthest() const { return farthestShift; }

    // Samples outside the data, which are added to others. Sample p goes to modulo(p, period), if that is one
    // of the n.
    struct Outside {
        Index first;
        Index last;
    };
    Outside before() const { return {std::min<Index>(0, channels.first()), -1}; }
    Outside after() const { return {period, period + std::max<Index>(channels.last(), -1)}; }
    Index target(Index position) const { return modulo(position, period); }
    const EdgeFilterRows& edgeFilters() const { return edges; }

    // The taps of the inner row of a pair of the given coefficients.
    void fillInner(const double* lowAt, const double* highAt, Index pair, Row& row) const {
        row.count = 0;
        for (int i = 0; i < tapCount; ++i) {
            const auto& [shift, channel, first, second, sums] = taps[i];
            row.add((channel == Channel::Low ? lowAt : highAt) + (pair - shift), first, second, sums);
        }
    }

    // Coefficients `first` to `first` + `count` - 1 of a channel, extended; zeros beyond the period and for
    // those that belong to boundary filters.
    void gather(Channel channel, const double* from, Index first, Index count, double* out) const;

    // The row of a pair, inside or outside; at(channel, k) is where coefficient k of a channel stands.
    template <class At>
    void fill(Index q, At at, Row& row) const {
        row.count = 0;
        for (int i = 0; i < tapCount; ++i) {
            const auto& [shift, channel, first, second, sums] = taps[i];
            const CoefficientExtension& extension = channel == Channel::Low ? low : high;
            const Index k = q - shift;
            if (k < edges.rows || k >= extension.period() - edges.rows) continue;
            const Index source = extension.source(k);
            if (source < 0) continue;
            const double sign = extension.signAt(k);
            row.add(at(channel, source), sign * first, sign * second, sums);
        }
    }

 private:
    // What coefficient q - shift of a channel adds to the samples of pair q.
    struct Tap {
        Index shift;
        Channel channel;
        double first;
        double second;
        Term::Sums sums;
    };

    void addTap(Index shift, Channel channel, const Filter& filter);

    Index n;
    Channels channels;
    Index phase;
    CoefficientExtension low;
    CoefficientExtension high;
    Index period;
    EdgeFilterRows edges;
    Index nearestShift;
    Index farthestShift;
    Index interiorBegin;
    Index interiorEnd;
    Tap taps[mostTerms];
    int tapCount = 0;
};

// The outputs near both ends of lines of `width` numbers a sample: sampleAt(p) is where sample p stands,
// lowAt(k) and highAt(k) where coefficients go.
template <class SampleAt, class LowAt, class HighAt>
void analyseEnds(const AnalysisRows& rows, SampleAt sampleAt, LowAt lowAt, HighAt highAt, std::size_t width) {
    const auto analyse = [&](Index k) { analyseRow(rows, k, sampleAt, lowAt(k), highAt(k), width); };
    for (Index k = 0; k < rows.begin(); ++k) analyse(k);
    for (Index k = rows.end(); k < rows.count(); ++k) analyse(k);
}

// The samples near both ends, when those between are there: at(channel, k) is where a coefficient stands,
// sampleAt(p) where a sample goes. `scratch` has room for two samples.
template <class At, class SampleAt>
class SynthesisOfEnds {
 public:
    SynthesisOfEnds(const SynthesisRows& matrixRows, At coefficientAt, SampleAt sample, std::size_t lineWidth,
                    double* twoSamples)
        : rows(matrixRows), at(coefficientAt), sampleAt(sample), width(lineWidth), scratch(twoSamples) {}

    void run() {
        if (rows.edgeFilters().rows > 0) {
            addOntoLeftEdge();
        } else {
            for (Index q = 0; q < rows.begin(); ++q) synthesise(q);
        }
        for (Index q = rows.end(); q < rows.count(); ++q) synthesise(q);
        if (rows.edgeFilters().rows > 0) {
            addRightEdge();
        } else {
            const auto [first, last] = rows.before();
            for (Index p = first; p <= last; ++p) fold(p);
            const auto [from, to] = rows.after();
            for (Index p = to; p >= from; --p) fold(p);
        }
    }

    // Boundary filters alone, and at the left end what adds to them: there they come first, and the taps are
    // added one by one.
    void addOntoLeftEdge() {
        for (Index p = 0; p < rows.position(rows.begin()); ++p) std::fill_n(sampleAt(p), width, 0.0);
        addEdge(rows.edgeFilters().bank->BLlo, rows.edgeFilters().bank->BLhi, false);
        for (Index q = 0; q < rows.begin(); ++q) {
            const Index p = rows.position(q);
            rows.fill(q, at, row);
            for (const Term* term = row.terms; term != row.terms + row.count; ++term) {
                if (term->sums != Term::Second && p >= 0) add(*term, term->first, sampleAt(p));
                if (term->sums != Term::First) add(*term, term->second, sampleAt(p + 1));
            }
        }
    }
    void addRightEdge() { addEdge(rows.edgeFilters().bank->BRlo, rows.edgeFilters().bank->BRhi, true); }

 private:
    void synthesise(Index q) {
        const Index p = rows.position(q);
        rows.fill(q, at, row);
        kernels().sumPairs(row.terms, row.count, p < 0 ? scratch : sampleAt(p),
                           p + 1 < rows.samples() ? sampleAt(p + 1) : nullptr, width);
    }

    // The sample outside is summed for itself and then added to the one that it stands for.
    void fold(Index position) {
        const Index target = rows.target(position);
        if (target >= rows.samples()) return;
        const Index q = rows.pairOf(position);
        rows.fill(q, at, row);
        kernels().sumPairs(row.terms, row.count, scratch, scratch + width, width);
        const double* outside = position == rows.position(q) ? scratch : scratch + width;
        double* sum = sampleAt(target);
        for (std::size_t i = 0; i < width; ++i) sum[i] += outside[i];
    }

    void add(const Term& term, double weight, double* sum) const {
        for (std::size_t i = 0; i < width; ++i) sum[i] += weight * term.source[i];
    }

    void addEdge(EdgeRows low, EdgeRows high, bool right) {
        const EdgeFilterRows& edges = rows.edgeFilters();
        for (Index i = 0; i < edges.rows; ++i) {
            const Index k = right ? rows.coefficients(Channel::Low) - 1 - i : i;
            const double* s = at(Channel::Low, k);
            const double* d = at(Channel::High, k);
            for (Index t = 0; t < edges.reach(i); ++t) {
                double* sum = sampleAt(right ? rows.samples() - 1 - t : t);
                for (std::size_t w = 0; w < width; ++w) sum[w] += s[w] * low[i][t] + d[w] * high[i][t];
            }
        }
    }

    const SynthesisRows& rows;
    At at;
    SampleAt sampleAt;
    std::size_t width;
    double* scratch;
    Row row;
};

}  // namespace undula
