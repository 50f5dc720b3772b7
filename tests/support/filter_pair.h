// A two-channel filter bank by its definition, as a measure of the pack's transforms.
#pragma once

#include "support/pack.h"
#include "support/plain_steps.h"

struct FilterPair {
    Numbers analysis;   // low-pass filter of the analysis
    Numbers synthesis;  // and of the synthesis
    int analysisOffset = 0;
    int synthesisOffset = 0;
    bool flipAnalysis = false;  // whether the high-pass filter is negated
    bool flipSynthesis = false;
};

inline FilterPair orthonormal(const Numbers& low, int offset, bool flip = false) {
    return {low, low, offset, offset, flip, flip};
}

enum class Direction { analysis, synthesis };

// The transform of a matrix by columns, one column for a signal, whose lines a step treats; levels
// on the top-left blocks, columns before rows in both directions.
Numbers transformed(plain::Step* step, Direction direction, const FilterPair& pair, Numbers values, int rows,
                    int cols, int levels);
