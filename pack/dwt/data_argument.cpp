#include "dwt/data_argument.h"

#include <algorithm>

namespace undula {

bool admitsSides(const BoundaryTreatment& boundary, const FilterBank& bank, const aMatrix* data,
                 std::uint64_t levels) {
    return holdsForSides(data, [&](std::uint64_t side) { return boundary.admits(bank, side, levels); });
}

Block blockOf(const aMatrix* data, const Array<double>& copy) {
    return contiguous(copy.data(), static_cast<std::uint64_t>(data->rows),
                      static_cast<std::uint64_t>(data->cols));
}

Result<DataView> DataView::of(const aMatrix* data) {
    DataView result;
    const auto rows = static_cast<std::uint32_t>(data->rows);
    const auto cols = static_cast<std::uint32_t>(data->cols);
    result.view = {data->re, data->stride, rows, cols};
    if (data->re == nullptr) {
        result.zeros = Array<double>::zeroed(sizeOf(data));
        if (!result.zeros) return Code::OutOfMemory;
        result.view = blockOf(data, result.zeros);
    }
    return result;
}

void copyPart(const aMatrix* array, const Rectangle& place, const Block& out) {
    if (array->re == nullptr) {
        for (std::uint32_t col = 0; col < out.cols; ++col) std::fill_n(out.column(col), out.rows, 0.0);
        return;
    }
    const Block whole = {array->re, array->stride, static_cast<std::uint32_t>(array->rows),
                         static_cast<std::uint32_t>(array->cols)};
    copyBlock(partOf(whole, place), out);
}

Failure stepFailure(const Failure& failure, Code tooShort, int position) {
    return failure.code == Code::InvalidLevel ? Failure(tooShort, position) : failure;
}

}  // namespace undula
