// Splitting and merging packets.
#pragma once

#include "dwt/image_steps.h"
#include "packets/basis.h"

namespace undula {

// Splits every packet of a level into those of the next, which are of the same shape.
Failure splitLevel(const BoundaryTreatment& boundary, const FilterBank& bank, const Block& packets,
                   std::uint32_t level, const Block& next, Workspace& workspace);

// Splits the packets of the data in place, from the root down to a basis, or merges them from there up.
// Polls once a level.
Failure splitPackets(const BoundaryTreatment& boundary, const FilterBank& bank, const Block& data,
                     const PacketList& splits, const Poll& poll, Workspace& workspace);
Failure mergePackets(const BoundaryTreatment& boundary, const FilterBank& bank, const Block& data,
                     const PacketList& splits, const Poll& poll, Workspace& workspace);

}  // namespace undula
