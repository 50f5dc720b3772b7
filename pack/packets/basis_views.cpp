// extract_basis: the coefficients of a basis out of a packet table.
// basis_display2d: a picture of the blocks of a basis.
#include <algorithm>

#include "frame/checks.h"
#include "frame/workers.h"
#include "packets/basis_argument.h"
#include "packets/packet_geometry.h"
#include "packets/table.h"

using namespace undula;

namespace {

constexpr int pictureSide = 128;
constexpr std::uint64_t deepestPicture = 7;
constexpr double line = 0.0;
constexpr double background = 255.0;

Failure readExtraction(EfiCallContext* context, const aVector* tableValue, const aMatrix* matrix,
                       PacketTable& table, Basis& basis) {
    if (auto failure = requireTableVector(tableValue)) return failure;
    if (auto failure = requireRealArray(context, matrix, 2)) return failure;
    if (matrix->cols != 2 && matrix->cols != 3) return {Code::InvalidPacketBasis, 2};
    if (auto failure = readTiling(matrix, basis, 2)) return failure;
    if (auto failure = readTable(context, tableValue, table)) return failure;
    if (basis.depth() > table.levels) return {Code::InvalidLevelInBasis, 2};
    return requireBasisFor(table.elements[0], matrix, 2);
}

void copyPacket(const aMatrix* element, const Packet& packet, double* result) {
    const Rectangle place = placeIn(element, packet);
    for (std::uint64_t c = place.cols.start; c < place.cols.start + place.cols.length; ++c) {
        const Rectangle column = {place.rows, {c, 1}};
        copyRectangle(element, column,
                      result + c * static_cast<std::uint64_t>(element->rows) + place.rows.start);
    }
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

Failure readPictured(EfiCallContext* context, const aMatrix* matrix, Basis& basis) {
    if (auto failure = requireRealArray(context, matrix, 1)) return failure;
    if (matrix->cols != 3) return {Code::MustBeTwoDimensionalBasis, 1};
    if (auto failure = readBasis(matrix, basis)) return failure;
    if (basis.depth() > deepestPicture) return {"too many levels to be displayed", 1};
    return readTiling(matrix, basis, 1);
}

}  // namespace

aMatrix* extract_basis(EfiCallContext* context, aVector* tableValue, aMatrix* matrix) {
    PacketTable table;
    Basis basis;
    if (auto failure = readExtraction(context, tableValue, matrix, table, basis))
        return fail(context, failure);
    auto result = newElements(static_cast<std::uint64_t>(table.rows), static_cast<std::uint64_t>(table.cols));
    if (!result) return fail(context, outOfMemory());
    for (const Packet& packet : basis.rows) {
        if (interrupted(context)) return fail(context, interruption());
        copyPacket(table.elements[static_cast<std::uint32_t>(packet.level)], packet, result.data());
    }
    return resultMatrix(context, table.rows, table.cols, result);
}

aMatrix* basis_display2d(EfiCallContext* context, aMatrix* matrix) {
    Basis basis;
    if (auto failure = readPictured(context, matrix, basis)) return fail(context, failure);
    auto picture = newElements(pictureSide, pictureSide);
    if (!picture) return fail(context, outOfMemory());
    drawFrame(picture.data());
    for (const Packet& block : basis.rows) {
        if (interrupted(context)) return fail(context, interruption());
        drawBlock(block, picture.data());
    }
    return resultMatrix(context, pictureSide, pictureSide, picture);
}
