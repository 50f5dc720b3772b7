// extract_basis: the coefficients of a basis out of a packet table.
// basis_display2d: a picture of the blocks of a basis.
#include <algorithm>
#include <utility>

#include "dwt/data_argument.h"
#include "frame/checks.h"
#include "frame/workers.h"
#include "packets/basis_argument.h"
#include "packets/table.h"

using namespace undula;

namespace {

constexpr int pictureSide = 128;
constexpr std::uint64_t deepestPicture = 7;
constexpr double line = 0.0;
constexpr double background = 255.0;

// A table, and the basis whose packets are to be taken out of it.
struct Extraction {
    TableLevels levels;
    Basis basis;
};

Result<Extraction> readExtraction(EfiCallContext* context, const aVector* table, const aMatrix* matrix) {
    if (auto failure = requireTableVector(table)) return failure;
    if (auto failure = requireRealArray(context, matrix, 2)) return failure;
    if (matrix->cols != 2 && matrix->cols != 3) return Failure(Code::InvalidPacketBasis, 2);
    auto basis = readTiling(matrix, 2);
    if (!basis) return basis.failure();
    const auto levels = findLevels(context, table);
    if (!levels) return levels.failure();
    if (basis->depth() > levels->count) return Failure(Code::InvalidLevelInBasis, 2);
    if (auto failure = requireBasisFor(levels->elements[0], matrix, 2)) return failure;
    return Extraction{*levels, std::move(*basis)};
}

Result<aMatrix*> extract(EfiCallContext* context, const aVector* table, const aMatrix* matrix) {
    const auto extraction = readExtraction(context, table, matrix);
    if (!extraction) return extraction.failure();
    const auto& [levels, basis] = *extraction;
    const aMatrix* data = levels.elements[0];
    const int rows = data->rows;
    const int cols = data->cols;
    auto elements = newElements(static_cast<std::uint64_t>(rows), static_cast<std::uint64_t>(cols));
    if (!elements) return Code::OutOfMemory;
    const Block result = blockOf(data, elements);
    for (const Packet& packet : basis.rows) {
        const Rectangle place = packetPlace(result.rows, result.cols, packet.index());
        copyPart(levels.elements[packet.index().level], place, partOf(result, place));
    }
    // All has been read, so that nothing that happens now can change it.
    for (std::size_t i = 0; i < basis.rows.count; ++i) {
        if (interrupted(context)) return Code::Interrupted;
    }
    return newMatrix(context, rows, cols, elements);
}

double* pixel(double* picture, std::ptrdiff_t row, std::ptrdiff_t col) {
    return picture + pictureSide * col + row;
}

// The square's frame: its top and right sides. The blocks draw the others.
void drawFrame(double* picture) {
    std::fill_n(picture, pictureSide * pictureSide, background);
    std::fill_n(pixel(picture, 0, pictureSide - 1), pictureSide, line);
    for (int col = 0; col < pictureSide; ++col) *pixel(picture, 0, col) = line;
}

// The left and bottom sides of a block.
void drawBlock(const Packet& block, double* picture) {
    const int side = pictureSide >> static_cast<int>(block.level);
    const int top = static_cast<int>(block.row) * side;
    const int left = static_cast<int>(block.col) * side;
    std::fill_n(pixel(picture, top, left), side, line);
    for (int col = left; col < left + side; ++col) *pixel(picture, top + side - 1, col) = line;
}

Result<Basis> readPictured(EfiCallContext* context, const aMatrix* matrix) {
    if (auto failure = requireRealArray(context, matrix, 1)) return failure;
    if (matrix->cols != 3) return Failure(Code::MustBeTwoDimensionalBasis, 1);
    auto basis = readBasis(matrix);
    if (!basis) return basis;
    if (basis->depth() > deepestPicture) return Failure(Code::TooManyLevelsToDisplay, 1);
    return readTiling(matrix, 1);
}

Result<aMatrix*> display(EfiCallContext* context, const aMatrix* matrix) {
    const auto basis = readPictured(context, matrix);
    if (!basis) return basis.failure();
    auto picture = newElements(pictureSide, pictureSide);
    if (!picture) return Code::OutOfMemory;
    drawFrame(picture.data());
    for (const Packet& block : basis->rows) {
        if (interrupted(context)) return Code::Interrupted;
        drawBlock(block, picture.data());
    }
    return newMatrix(context, pictureSide, pictureSide, picture);
}

}  // namespace

aMatrix* extract_basis(EfiCallContext* context, aVector* table, aMatrix* basis) {
    return toHost(context, extract(context, table, basis));
}

aMatrix* basis_display2d(EfiCallContext* context, aMatrix* basis) {
    return toHost(context, display(context, basis));
}
