// create_level, create_level2d: all subbands of one level, as a basis.
#include "frame/checks.h"
#include "frame/workers.h"

using namespace undula;

namespace {

// Deeper levels would have more than 2^20 rows.
constexpr std::uint32_t deepestListed = 20;
constexpr std::uint32_t deepestListed2d = 10;

// Fills a matrix of rows (level, ...); `write` puts the rest of a row into the matrix.
template <class Write>
aMatrix* listRows(EfiCallContext* context, double level, int rows, int cols, Write write) {
    auto list = newElements(static_cast<std::uint64_t>(rows), static_cast<std::uint64_t>(cols));
    if (!list) return fail(context, outOfMemory());
    for (int row = 0; row < rows; ++row) {
        if (interrupted(context)) return fail(context, interruption());
        list[static_cast<std::size_t>(row)] = level;
        write(list.data(), row);
    }
    return resultMatrix(context, rows, cols, list);
}

}  // namespace

aMatrix* create_level(EfiCallContext* context, aComplex* level, aComplex* dimension) {
    if (auto failure = requireReal(level, 1)) return fail(context, failure);
    if (auto failure = requireReal(dimension, 2)) return fail(context, failure);
    if (dimension->re == 2.0) return create_level2d(context, level);
    if (dimension->re != 1.0) return fail(context, {Code::InvalidDimension, 2});
    if (auto failure = requireLevel(level->re, 1)) return fail(context, failure);
    if (asIndex(level->re) > deepestListed) return fail(context, outOfMemory());
    const int rows = 1 << asIndex(level->re);
    return listRows(context, level->re, rows, 2, [rows](double* list, int row) { list[rows + row] = row; });
}

aMatrix* create_level2d(EfiCallContext* context, aComplex* level) {
    if (auto failure = requireReal(level, 1)) return fail(context, failure);
    if (auto failure = requireLevel(level->re, 1)) return fail(context, failure);
    if (asIndex(level->re) > deepestListed2d) return fail(context, outOfMemory());
    const int side = 1 << asIndex(level->re);
    const int rows = side * side;
    return listRows(context, level->re, rows, 3, [rows, side](double* list, int row) {
        list[rows + row] = row / side;
        list[2 * rows + row] = row % side;
    });
}
