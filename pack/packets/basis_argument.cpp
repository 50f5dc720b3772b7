#include "packets/basis_argument.h"

#include "frame/checks.h"

namespace undula {

Failure requireBasisFor(const aMatrix* data, const aMatrix* basis, int argument) {
    if (data->cols < 2 && basis->cols != 2) return {Code::MustBeOneDimensionalBasis, argument};
    if (data->cols >= 2 && basis->cols != 3) return {Code::MustBeTwoDimensionalBasis, argument};
    return {};
}

Failure readBasis(const aMatrix* matrix, Basis& basis) {
    const auto count = static_cast<std::size_t>(matrix->rows);
    basis.rows = {Array<Packet>::uninitialised(count), count};
    basis.dimensions = matrix->cols - 1;
    if (!basis.rows.packets) return outOfMemory();
    for (int row = 0; row < matrix->rows; ++row) {
        basis.rows.packets[static_cast<std::size_t>(row)] = {
            element(matrix, row, 0), element(matrix, row, 1),
            basis.dimensions == 1 ? 0.0 : element(matrix, row, 2)};
    }
    return {};
}

Failure checkTiling(const Basis& basis, PacketList& splits, int argument) {
    if (auto failure = failureAt(checkEntries(basis), argument)) return failure;
    return failureAt(findSplits(basis, splits), argument);
}

Failure readTiling(const aMatrix* matrix, Basis& basis, int argument) {
    if (auto failure = readBasis(matrix, basis)) return failure;
    PacketList splits;
    return checkTiling(basis, splits, argument);
}

}  // namespace undula
