// The search for the basis of least cost.
//
// Source: R. R. Coifman, M. V. Wickerhauser, Entropy-based algorithms for best basis selection, IEEE
// Trans. Information Theory 38 (1992) 713-718.
#pragma once

#include <cstddef>
#include <cstdint>

#include "dwt/block.h"
#include "frame/errors.h"
#include "frame/memory.h"
#include "frame/poll.h"
#include "frame/real_function.h"
#include "packets/basis.h"

namespace undula {

// The levels of a table, the data itself first.
struct TableView {
    const Block* levels;
    std::uint32_t depth;  // levels besides the data

    const Block& data() const { return levels[0]; }
};

// The packets of the basis whose costs, summed over coefficients and packets, are least: by ascending
// level, within a level from left to right in the tree. Where a packet costs as much as its children,
// the children are taken. A signal's search polls before each packet; an image's before each row of
// packets of the deepest level and before each level above it.
Result<PacketList> searchBestBasis(const TableView& table, double_to_double_func& cost, const Poll& poll);

}  // namespace undula
