// best_basis: the packet basis of least cost under a function of the user's.
#include "packets/best_basis_search.h"

#include "frame/basis_rows.h"
#include "frame/user_function.h"
#include "frame/workers.h"
#include "packets/table.h"

using namespace undula;

namespace {

aMatrix* asMatrix(EfiCallContext* context, const PacketList& basis, bool isSignal) {
    BasisRows rows(basis.count, isSignal ? 2 : 3);
    if (!rows) return fail(context, outOfMemory());
    for (const Packet& packet : basis) rows.add(packet.level, packet.row, packet.col);
    return rows.result(context);
}

}  // namespace

aMatrix* best_basis(EfiCallContext* context, aVector* tableValue, aLambda* cost) {
    if (auto failure = requireTableVector(tableValue)) return fail(context, failure);
    double_to_double_lambda costFunction(context, cost);
    if (!costFunction.rooted()) return fail(context, outOfMemory());
    PacketTable table;
    if (auto failure = readTable(context, tableValue, table)) return fail(context, failure);

    LevelView views[mostLevels];
    for (std::uint32_t j = 0; j <= table.levels; ++j)
        views[j] = {table.elements[j]->re, table.elements[j]->stride};
    const TableView view = {views, table.levels, static_cast<std::uint32_t>(table.rows),
                            static_cast<std::uint32_t>(table.cols)};
    PacketList basis;
    const Code code = searchBestBasis(view, costFunction, pollOf(context), basis);
    if (auto failure = failureAt(code, 1)) return fail(context, failure);
    return asMatrix(context, basis, view.isSignal());
}
