#include "packets/basis_argument.h"

#include "frame/matrices.h"

namespace undula {

Failure requireBasisFor(const aMatrix* data, const aMatrix* basis, int argument) {
    if (data->cols < 2 && basis->cols != 2) return {Code::MustBeOneDimensionalBasis, argument};
    if (data->cols >= 2 && basis->cols != 3) return {Code::MustBeTwoDimensionalBasis, argument};
    return {};
}

Result<Basis> readBasis(const aMatrix* matrix) {
    const auto count = static_cast<std::size_t>(matrix->rows);
    Basis basis = {{Array<Packet>::uninitialised(count), count}, matrix->cols - 1};
    if (!basis.rows.packets) return Code::OutOfMemory;
    for (int row = 0; row < matrix->rows; ++row) {
        basis.rows.packets[static_cast<std::size_t>(row)] = {
            element(matrix, row, 0), element(matrix, row, 1),
            basis.dimensions == 1 ? 0.0 : element(matrix, row, 2)};
    }
    return basis;
}

Result<Basis> readTiling(const aMatrix* matrix, int argument) {
    auto basis = readBasis(matrix);
    if (!basis) return basis;
    if (auto failure = checkEntries(*basis)) return failure.at(argument);
    const auto splits = findSplits(*basis);
    if (!splits) return splits.failure().at(argument);
    return basis;
}

}  // namespace undula
