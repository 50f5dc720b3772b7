#include "dwt/separable.h"

#include <algorithm>

namespace undula {

namespace {

bool askTimes(const Poll& poll, std::uint32_t times) {
    while (times-- > 0) {
        if (poll()) return true;
    }
    return false;
}

}  // namespace

Failure separableStep(Step* step, const FilterBank& bank, const Block& block, bool swapInColumns,
                      bool swapInRows, const Poll& poll, Workspace& workspace) {
    for (std::uint32_t col = 0; col < block.cols; ++col) {
        if (poll()) return Code::Interrupted;
        if (auto failure = step(bank, {block.column(col)}, block.rows, swapInColumns, workspace))
            return failure;
    }
    for (std::uint32_t row = 0; row < block.rows; row += batchRows) {
        const std::uint32_t rows = std::min(batchRows, block.rows - row);
        if (askTimes(poll, rows)) return Code::Interrupted;
        const Lines lines = {block.origin + row, block.stride, static_cast<std::ptrdiff_t>(rows)};
        if (auto failure = step(bank, lines, block.cols, swapInRows, workspace)) return failure;
    }
    return {};
}

Failure periodic_analysis_step_2d(const FilterBank& bank, const Block& block, bool swapInColumns,
                                  bool swapInRows, Workspace& workspace) {
    if (block.rows < 2 || block.cols < 2) return Code::InvalidLevel;
    return separableStep(periodic_analysis_step, bank, block, swapInColumns, swapInRows, {}, workspace);
}

}  // namespace undula
