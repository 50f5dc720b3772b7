// get_subband2d, get_smooth2d, get_detail2d, put_subband2d, put_smooth2d, put_detail2d: blocks of
// transformed images.
#include "dwt/data_argument.h"
#include "dwt/orientation.h"
#include "frame/checks.h"
#include "frame/integers.h"
#include "frame/workers.h"

using namespace undula;

namespace {

struct BlockArguments {
    const aMatrix* matrix;
    const aComplex* level;
    const aComplex* row;
    const aComplex* col;
};

Failure requireRealBlock(EfiCallContext* context, const BlockArguments& block) {
    if (auto failure = requireRealArray(context, block.matrix, 1)) return failure;
    return requireRealFrom(2, block.level, block.row, block.col);
}

// Checks level and indices, whose imaginary parts are zero, and finds the block.
Result<Rectangle> locate(const BlockArguments& block) {
    if (auto failure = requireLevel(block.level->re, 2)) return failure;
    if (auto failure = requireWhole(block.row->re, 3)) return failure;
    if (auto failure = requireWhole(block.col->re, 4)) return failure;
    const auto rows = static_cast<std::uint64_t>(block.matrix->rows);
    const auto cols = static_cast<std::uint64_t>(block.matrix->cols);
    const std::uint32_t level = asIndex(block.level->re);
    if (level > deepestLevel(rows) || level > deepestLevel(cols)) return Failure(Code::InvalidLevel, 2);
    const auto isPacket = [level](double index) {
        return 0.0 <= index && index < static_cast<double>(std::uint64_t{1} << level);
    };
    if (!isPacket(block.row->re)) return Failure(Code::InvalidPacketIndex, 3);
    if (!isPacket(block.col->re)) return Failure(Code::InvalidPacketIndex, 4);
    return Rectangle{subband(rows, level, asIndex(block.row->re)),
                     subband(cols, level, asIndex(block.col->re))};
}

Result<aMatrix*> getBlock(EfiCallContext* context, const BlockArguments& block) {
    if (auto failure = requireRealBlock(context, block)) return failure;
    const auto place = locate(block);
    if (!place) return place.failure();
    const std::uint64_t rows = place->rows.length;
    const std::uint64_t cols = place->cols.length;
    auto part = newElements(rows, cols);
    if (part) copyPart(block.matrix, *place, contiguous(part.data(), rows, cols));
    return newMatrix(context, static_cast<int>(rows), static_cast<int>(cols), part);
}

Result<aMatrix*> putBlock(EfiCallContext* context, const BlockArguments& block, const aMatrix* part) {
    if (auto failure = requireRealBlock(context, block)) return failure;
    if (auto failure = requireRealArray(context, part, 5)) return failure;
    const auto place = locate(block);
    if (!place) return place.failure();
    const auto rows = static_cast<std::uint64_t>(part->rows);
    const auto cols = static_cast<std::uint64_t>(part->cols);
    if (place->rows.length != rows || place->cols.length != cols)
        return Failure(Code::InvalidSubbandDimensions, 5);
    auto result = copyOfElements(block.matrix);
    if (result) copyPart(part, {{0, rows}, {0, cols}}, partOf(blockOf(block.matrix, result), *place));
    return newMatrix(context, block.matrix->rows, block.matrix->cols, result);
}

// The indices of an orientation are not the user's, so no complaint names them.
HostValue getBlock(EfiCallContext* context, const aMatrix* matrix, const aComplex* level,
                   const Orientation& block) {
    const aComplex row = scalarOf(block.row);
    const aComplex col = scalarOf(block.col);
    return toHost(context, reposition(getBlock(context, {matrix, level, &row, &col}), {1, 2, 0, 0}));
}

HostValue putBlock(EfiCallContext* context, const aMatrix* matrix, const aComplex* level, const aMatrix* part,
                   const Orientation& block) {
    const aComplex row = scalarOf(block.row);
    const aComplex col = scalarOf(block.col);
    return toHost(context, reposition(putBlock(context, {matrix, level, &row, &col}, part), {1, 2, 0, 0, 3}));
}

Failure requireArrayAndLevel(EfiCallContext* context, const aMatrix* matrix, const aComplex* level) {
    if (auto failure = requireRealArray(context, matrix, 1)) return failure;
    return requireReal(level, 2);
}

// The string's length is looked at before the block, its letter after it.
Result<Orientation> checkPutDetail(EfiCallContext* context, const aMatrix* matrix, const aComplex* level,
                                   const aMatrix* part, const aString* type) {
    if (auto failure = requireArrayAndLevel(context, matrix, level)) return failure;
    if (!isOneCharacter(type->text)) return Failure(Code::InvalidOrientation, 4);
    if (auto failure = requireRealArray(context, part, 3)) return failure;
    return readOrientation(type->text, 4);
}

}  // namespace

aMatrix* get_subband2d(EfiCallContext* context, aMatrix* matrix, aComplex* level, aComplex* row,
                       aComplex* col) {
    return toHost(context, getBlock(context, {matrix, level, row, col}));
}

aMatrix* put_subband2d(EfiCallContext* context, aMatrix* matrix, aComplex* level, aComplex* row,
                       aComplex* col, aMatrix* part) {
    return toHost(context, putBlock(context, {matrix, level, row, col}, part));
}

aMatrix* get_smooth2d(EfiCallContext* context, aMatrix* matrix, aComplex* level) {
    return getBlock(context, matrix, level, smoothBlock);
}

aMatrix* get_detail2d(EfiCallContext* context, aMatrix* matrix, aComplex* level, aString* type) {
    if (auto failure = requireArrayAndLevel(context, matrix, level)) return toHost(context, failure);
    const auto block = readOrientation(type->text, 3);
    return block ? getBlock(context, matrix, level, *block) : toHost(context, block.failure());
}

aMatrix* put_smooth2d(EfiCallContext* context, aMatrix* matrix, aComplex* level, aMatrix* part) {
    return putBlock(context, matrix, level, part, smoothBlock);
}

aMatrix* put_detail2d(EfiCallContext* context, aMatrix* matrix, aComplex* level, aMatrix* part,
                      aString* type) {
    const auto block = checkPutDetail(context, matrix, level, part, type);
    return block ? putBlock(context, matrix, level, part, *block) : toHost(context, block.failure());
}
