// Images: a step along every column, then along every row.
#pragma once

#include "dwt/block.h"
#include "dwt/steps.h"
#include "frame/poll.h"

namespace undula {

// Rows that are filtered side by side: enough to fill the machine's vectors and cache lines.
inline constexpr std::uint32_t batchRows = 16;

// Runs the step along the columns of the block, with `swapInColumns`, and then along its rows, with
// `swapInRows`. Polls before each column and before each row.
Failure separableStep(Step* step, const FilterBank& bank, const Block& block, bool swapInColumns,
                      bool swapInRows, const Poll& poll, Workspace& workspace);

// The periodic analysis of a block, both of whose sides must be at least 2. No transform calls it, as
// they check the sides for all levels at once; it is the step of an image by itself.
Failure periodic_analysis_step_2d(const FilterBank& bank, const Block& block, bool swapInColumns,
                                  bool swapInRows, Workspace& workspace);

}  // namespace undula
