// best_basis: the packet basis of least cost under a user function.
#include "packets/best_basis_search.h"

#include "frame/basis_rows.h"
#include "frame/user_function.h"
#include "frame/workers.h"
#include "packets/table.h"

using namespace undula;

namespace {

Result<aMatrix*> asMatrix(EfiCallContext* context, const PacketList& basis, bool isSignal) {
    BasisRows rows(basis.count, isSignal ? 2 : 3);
    if (!rows) return Code::OutOfMemory;
    for (const Packet& packet : basis) rows.add(packet.level, packet.row, packet.col);
    return rows.result(context);
}

Result<aMatrix*> findBestBasis(EfiCallContext* context, const aVector* vector, aLambda* cost) {
    if (auto failure = requireTableVector(vector)) return failure;
    double_to_double_lambda costFunction(context, cost);
    if (!costFunction.rooted()) return Code::OutOfMemory;
    const auto table = readTable(context, vector);
    if (!table) return table.failure();

    Block levels[mostLevels];
    for (std::uint32_t j = 0; j <= table->levels; ++j) levels[j] = table->level(j);
    const auto basis = searchBestBasis({levels, table->levels}, costFunction, pollOf(context));
    if (!basis) return basis.failure();
    return asMatrix(context, *basis, levels[0].isSignal());
}

}  // namespace

aMatrix* best_basis(EfiCallContext* context, aVector* table, aLambda* cost) {
    return toHost(context, findBestBasis(context, table, cost));
}
