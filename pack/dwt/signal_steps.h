// The steps along signals of one length: what depends on the filters and the length is prepared once.
#pragma once

#include "dwt/rows.h"

namespace undula {

class SignalAnalysis {
 public:
    // Requires n >= ends.shortest(bank).
    SignalAnalysis(const Ends& ends, const FilterBank& bank, Index n);

    // Splits n samples; the coefficients must not overlap them.
    void run(const double* x, double* low, double* high);

    // Inner rows alone, the first of which meets x[0] first. The taps of a row lie within `widestRow`.
    void runInner(const double* x, Index count, double* low, double* high);

    // The farthest that the samples of a row may lie apart in a run.
    static constexpr Index widestRow = 256;

 private:
    // Outputs that are computed at once, so that the samples, parted by parity, stay in the first cache.
    static constexpr Index runLength = 256;

    bool isNarrow() const;
    void runPairs(const double* x, Index from, Index to, double* low, double* high);
    // At most `runLength` outputs of samples that lie one behind the other.
    void runTogether(const double* x, Index count, double* low, double* high);
    void runScattered(const double* x, Index from, Index to, double* low, double* high);
    const double* gathered(const double* x, Index first, Index count);
    void runRow(const double* x, Index k, double* low, double* high);

    AnalysisRows rows;
    Row inner;  // over `even` and `odd`, of narrow rows
    alignas(64) double even[runLength + widestRow / 2];
    alignas(64) double odd[runLength + widestRow / 2];
    double samples[2 * runLength + widestRow];
};

class SignalSynthesis {
 public:
    // Requires n >= ends.shortest(bank).
    SignalSynthesis(const Ends& ends, const FilterBank& bank, Index n);

    // Merges the coefficients to n samples, which must not overlap them.
    void run(const double* low, const double* high, double* x);

 private:
    // The most pairs near one end that are computed at once.
    static constexpr Index mostEnd = 128;
    // The farthest that the coefficients of a row may lie apart there.
    static constexpr Index widestRow = 128;

    bool goesOnBehind() const;
    Index backPair() const;
    Index backEnd() const;
    void runEnds(const double* low, const double* high, double* x);
    // The last pairs, with what lies behind, into `values`, and the samples among them into `x`.
    void runBack(const double* low, const double* high, double* values, double* x);
    // Pairs `from` to `to` - 1, inside or outside, into `out`.
    void runExtended(const double* low, const double* high, Index from, Index to, double* out);

    SynthesisRows rows;
    bool shortEnds;
    Row extended;  // over the windows
    double window[2][mostEnd + widestRow];
};

}  // namespace undula
