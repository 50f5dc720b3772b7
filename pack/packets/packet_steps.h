// Splitting and merging packets in place.
#pragma once

#include "dwt/boundary.h"
#include "dwt/separable.h"
#include "packets/basis.h"

namespace undula {

// Splits every packet of a level.
Failure splitLevel(const BoundaryTreatment& boundary, const FilterBank& bank, const Block& data,
                   std::uint32_t level, Workspace& workspace);

// Splits the packets from the root down to a basis, or merges them from there up. Polls once a level.
Failure splitPackets(const BoundaryTreatment& boundary, const FilterBank& bank, const Block& data,
                     const PacketList& splits, const Poll& poll, Workspace& workspace);
Failure mergePackets(const BoundaryTreatment& boundary, const FilterBank& bank, const Block& data,
                     const PacketList& splits, const Poll& poll, Workspace& workspace);

}  // namespace undula
