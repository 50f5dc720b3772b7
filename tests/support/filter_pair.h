// A two-channel filter bank by its definition, as a measure of the pack's transforms.
#pragma once

#include "support/plain_steps.h"

struct FilterPair {
    plain::Signal analysis;   // low-pass filter of the analysis
    plain::Signal synthesis;  // and of the synthesis
    int analysisOffset = 0;
    int synthesisOffset = 0;
    bool flipAnalysis = false;  // whether the high-pass filter is negated
    bool flipSynthesis = false;
};

inline FilterPair orthonormal(const plain::Signal& low, int offset, bool flip = false) {
    return {low, low, offset, offset, flip, flip};
}

// The bank of a pair, without boundary filters.
class PairBank : public undula::FilterBank {
 public:
    explicit PairBank(FilterPair pair);
    PairBank(const PairBank&) = delete;
    PairBank& operator=(const PairBank&) = delete;

 private:
    FilterPair pair_;
    plain::Signal analysisHigh_;
    plain::Signal synthesisHigh_;
};

enum class Direction { analysis, synthesis };

// The transform of a matrix by columns, one column for a signal, whose lines a step treats; levels
// on the top-left blocks, columns before rows in both directions.
template <class Number>
plain::SignalOf<Number> transformed(plain::StepOf<Number>* step, Direction direction,
                                    const undula::FilterBank& bank, plain::SignalOf<Number> values, long rows,
                                    long cols, int levels) {
    for (int i = 0; i < levels; ++i) {
        const int depth = direction == Direction::analysis ? i : levels - 1 - i;
        const auto halved = [depth](long n) { return (n + (1L << depth) - 1) >> depth; };
        plain::stepImage(step, bank, values.data(), rows, halved(rows), cols == 1 ? 1 : halved(cols), {});
    }
    return values;
}
