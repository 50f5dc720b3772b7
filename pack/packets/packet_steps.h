// Splitting and merging packets.
#pragma once

#include "dwt/image_steps.h"
#include "packets/basis.h"

namespace undula {

// Splits the packets of levels[0], the data, down to those of levels[count], which are all of one shape.
// Polls `count` times.
Failure splitIntoTable(const BoundaryTreatment& boundary, const FilterBank& bank, const Block* levels,
                       std::uint32_t count, const Poll& poll, Workspace& workspace);

// Splits the packets of the data in place, from the root down to a basis, or merges them from there up.
// Polls once a level.
Failure splitPackets(const BoundaryTreatment& boundary, const FilterBank& bank, const Block& data,
                     const PacketList& splits, const Poll& poll, Workspace& workspace);
Failure mergePackets(const BoundaryTreatment& boundary, const FilterBank& bank, const Block& data,
                     const PacketList& splits, const Poll& poll, Workspace& workspace);

}  // namespace undula
