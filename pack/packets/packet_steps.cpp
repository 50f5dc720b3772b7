#include "packets/packet_steps.h"

#include <iterator>

namespace undula {

namespace {

// The parities of a packet's positions tell whether its high-pass part stands first.
Failure apply(Step* step, const FilterBank& bank, const Block& data, const PacketIndex& packet,
              Workspace& workspace) {
    const Block block = partOf(data, packetPlace(data.rows, data.cols, packet));
    const bool oddRow = packet.row % 2 != 0;
    const bool oddCol = packet.col % 2 != 0;
    if (data.cols == 1) return step(bank, {block.origin}, block.rows, oddRow, workspace);
    return separableStep(step, bank, block, oddRow, oddCol, {}, workspace);
}

// Applies a step to packets, polling wherever a new level begins.
template <class Iterator>
Failure applyByLevels(Step* step, const FilterBank& bank, const Block& data, Iterator packet, Iterator end,
                      const Poll& poll, Workspace& workspace) {
    double level = -1.0;
    for (; packet != end; ++packet) {
        if (packet->level != level && poll()) return Code::Interrupted;
        level = packet->level;
        if (auto failure = apply(step, bank, data, packet->index(), workspace)) return failure;
    }
    return {};
}

}  // namespace

Failure splitLevel(const BoundaryTreatment& boundary, const FilterBank& bank, const Block& data,
                   std::uint32_t level, Workspace& workspace) {
    return forPacketsOfLevel(data.cols == 1, level, [&](const PacketIndex& packet) {
        return apply(boundary.analysis, bank, data, packet, workspace);
    });
}

Failure splitPackets(const BoundaryTreatment& boundary, const FilterBank& bank, const Block& data,
                     const PacketList& splits, const Poll& poll, Workspace& workspace) {
    return applyByLevels(boundary.analysis, bank, data, std::make_reverse_iterator(splits.end()),
                         std::make_reverse_iterator(splits.begin()), poll, workspace);
}

Failure mergePackets(const BoundaryTreatment& boundary, const FilterBank& bank, const Block& data,
                     const PacketList& splits, const Poll& poll, Workspace& workspace) {
    return applyByLevels(boundary.synthesis, bank, data, splits.begin(), splits.end(), poll, workspace);
}

}  // namespace undula
