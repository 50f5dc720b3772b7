// get_subband2d, get_smooth2d, get_detail2d, put_subband2d, put_smooth2d, put_detail2d: blocks of
// transformed images.
#include <algorithm>

#include "dwt/orientation.h"
#include "dwt/subband_layout.h"
#include "frame/checks.h"
#include "frame/halving.h"
#include "frame/workers.h"

using namespace undula;

namespace {

struct BlockArguments {
    const aMatrix* matrix;
    const aComplex* level;
    const aComplex* row;
    const aComplex* col;
};

// Checks level and indices, whose imaginary parts are zero, and finds the block.
Failure locate(const BlockArguments& block, Rectangle& rectangle) {
    if (auto failure = requireLevel(block.level->re, 2)) return failure;
    if (auto failure = requireWhole(block.row->re, 3)) return failure;
    if (auto failure = requireWhole(block.col->re, 4)) return failure;
    const auto rows = static_cast<std::uint64_t>(block.matrix->rows);
    const auto cols = static_cast<std::uint64_t>(block.matrix->cols);
    const std::uint32_t level = asIndex(block.level->re);
    if (level > deepestLevel(rows) || level > deepestLevel(cols)) return {Code::InvalidLevel, 2};
    const auto isPacket = [level](double index) {
        return 0.0 <= index && index < static_cast<double>(std::uint64_t{1} << level);
    };
    if (!isPacket(block.row->re)) return {Code::InvalidPacketIndex, 3};
    if (!isPacket(block.col->re)) return {Code::InvalidPacketIndex, 4};
    rectangle = {subband(rows, level, asIndex(block.row->re)), subband(cols, level, asIndex(block.col->re))};
    return {};
}

Failure requireRealScalars(const BlockArguments& block) {
    if (auto failure = requireReal(block.level, 2)) return failure;
    if (auto failure = requireReal(block.row, 3)) return failure;
    return requireReal(block.col, 4);
}

Failure checkGet(EfiCallContext* context, const BlockArguments& block, Rectangle& rectangle) {
    if (auto failure = requireRealArray(context, block.matrix, 1)) return failure;
    if (auto failure = requireRealScalars(block)) return failure;
    return locate(block, rectangle);
}

Failure checkPut(EfiCallContext* context, const BlockArguments& block, const aMatrix* part,
                 Rectangle& rectangle) {
    if (auto failure = requireRealArray(context, block.matrix, 1)) return failure;
    if (auto failure = requireRealScalars(block)) return failure;
    if (auto failure = requireRealArray(context, part, 5)) return failure;
    if (auto failure = locate(block, rectangle)) return failure;
    const bool fits = rectangle.rows.length == static_cast<std::uint64_t>(part->rows) &&
                      rectangle.cols.length == static_cast<std::uint64_t>(part->cols);
    return fits ? Failure() : Failure(Code::InvalidSubbandDimensions, 5);
}

// The indices are not the user's, so no complaint names them.
aMatrix* getBlock(EfiCallContext* context, aMatrix* matrix, aComplex* level, Orientation block) {
    aComplex row = scalarOf(block.row);
    aComplex col = scalarOf(block.col);
    return reposition(get_subband2d(context, matrix, level, &row, &col), {1, 2, 0, 0});
}

aMatrix* putBlock(EfiCallContext* context, aMatrix* matrix, aComplex* level, aMatrix* part,
                  Orientation block) {
    aComplex row = scalarOf(block.row);
    aComplex col = scalarOf(block.col);
    return reposition(put_subband2d(context, matrix, level, &row, &col, part), {1, 2, 0, 0, 3});
}

Failure requireArrayAndLevel(EfiCallContext* context, const aMatrix* matrix, const aComplex* level) {
    if (auto failure = requireRealArray(context, matrix, 1)) return failure;
    return requireReal(level, 2);
}

}  // namespace

aMatrix* get_subband2d(EfiCallContext* context, aMatrix* matrix, aComplex* level, aComplex* row,
                       aComplex* col) {
    Rectangle block = {};
    if (auto failure = checkGet(context, {matrix, level, row, col}, block)) return fail(context, failure);
    auto part = newElements(block.rows.length, block.cols.length);
    if (!part) return fail(context, outOfMemory());
    double* out = part.data();
    for (std::uint64_t c = 0; c < block.cols.length; ++c) {
        for (std::uint64_t r = 0; r < block.rows.length; ++r) {
            *out++ = element(matrix, static_cast<int>(block.rows.start + r),
                             static_cast<int>(block.cols.start + c));
        }
    }
    return resultMatrix(context, static_cast<int>(block.rows.length), static_cast<int>(block.cols.length),
                        part);
}

aMatrix* put_subband2d(EfiCallContext* context, aMatrix* matrix, aComplex* level, aComplex* row,
                       aComplex* col, aMatrix* part) {
    Rectangle block = {};
    if (auto failure = checkPut(context, {matrix, level, row, col}, part, block))
        return fail(context, failure);
    auto result = copyOfElements(matrix);
    for (int c = 0; result && c < part->cols; ++c) {
        const std::uint64_t column = block.cols.start + static_cast<std::uint64_t>(c);
        double* out = result.data() + column * static_cast<std::uint64_t>(matrix->rows) + block.rows.start;
        for (int r = 0; r < part->rows; ++r) out[r] = element(part, r, c);
    }
    return resultMatrix(context, matrix->rows, matrix->cols, result);
}

aMatrix* get_smooth2d(EfiCallContext* context, aMatrix* matrix, aComplex* level) {
    if (auto failure = requireArrayAndLevel(context, matrix, level)) return fail(context, failure);
    return getBlock(context, matrix, level, smoothBlock);
}

aMatrix* get_detail2d(EfiCallContext* context, aMatrix* matrix, aComplex* level, aString* type) {
    if (auto failure = requireArrayAndLevel(context, matrix, level)) return fail(context, failure);
    Orientation block = {};
    if (!readOrientation(type->text, block)) return fail(context, {text::invalidOrientation, 3});
    return getBlock(context, matrix, level, block);
}

aMatrix* put_smooth2d(EfiCallContext* context, aMatrix* matrix, aComplex* level, aMatrix* part) {
    if (auto failure = requireArrayAndLevel(context, matrix, level)) return fail(context, failure);
    if (auto failure = requireRealArray(context, part, 3)) return fail(context, failure);
    return putBlock(context, matrix, level, part, smoothBlock);
}

aMatrix* put_detail2d(EfiCallContext* context, aMatrix* matrix, aComplex* level, aMatrix* part,
                      aString* type) {
    if (auto failure = requireArrayAndLevel(context, matrix, level)) return fail(context, failure);
    // The string's length comes before the block, its letter after it.
    if (!isOneCharacter(type->text)) return fail(context, {text::invalidOrientation, 4});
    if (auto failure = requireRealArray(context, part, 3)) return fail(context, failure);
    Orientation block = {};
    if (!readOrientation(type->text, block)) return fail(context, {text::invalidOrientation, 4});
    return putBlock(context, matrix, level, part, block);
}
