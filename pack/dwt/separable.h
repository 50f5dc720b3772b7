// Images: a step along every column, then along every row.
#pragma once

#include "dwt/steps.h"
#include "frame/poll.h"

namespace undula {

// Part of a matrix that is stored by columns: element (r, c) is origin[c * stride + r].
struct Block {
    double* origin;
    std::ptrdiff_t stride;
    std::uint32_t rows;
    std::uint32_t cols;
};

// Runs the step along the columns of the block, with `swapInColumns`, and then along its rows, with
// `swapInRows`. Polls before each column and before each row; then answers Code::Interrupted.
Code separableStep(Step* step, const FilterBank& bank, const Block& block, bool swapInColumns,
                   bool swapInRows, const Poll& poll, Workspace& workspace);

// The periodic analysis of a block, both of whose sides must be at least 2.
Code periodic_analysis_step_2d(const FilterBank& bank, const Block& block, bool swapInColumns,
                               bool swapInRows, Workspace& workspace);

}  // namespace undula
