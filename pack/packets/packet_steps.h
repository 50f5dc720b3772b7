// Splitting and merging packets in place.
#pragma once

#include "dwt/boundary.h"
#include "dwt/separable.h"
#include "packets/basis.h"

namespace undula {

// A packet of data: where it lies, and the parities of its positions, which tell whether its high-pass
// part stands first.
struct PacketPlace {
    Block block;
    bool oddRow;
    bool oddCol;
};

// Of data of one column, the column position is 0.
PacketPlace placeOf(const Block& data, std::uint32_t level, std::uint64_t row, std::uint64_t col);
// The packet's level and positions are those of the data's.
PacketPlace placeOf(const Block& data, const Packet& packet);

// Splits every packet of a level.
Code splitLevel(const BoundaryTreatment& boundary, const FilterBank& bank, const Block& data,
                std::uint32_t level, Workspace& workspace);

// Splits the packets from the root down to a basis, or merges them from there up. Polls once a level.
Code splitPackets(const BoundaryTreatment& boundary, const FilterBank& bank, const Block& data,
                  const PacketList& splits, const Poll& poll, Workspace& workspace);
Code mergePackets(const BoundaryTreatment& boundary, const FilterBank& bank, const Block& data,
                  const PacketList& splits, const Poll& poll, Workspace& workspace);

}  // namespace undula
