#include "packets/packet_steps.h"

#include <iterator>

#include "dwt/subband_layout.h"

namespace undula {

namespace {

Code apply(Step* step, const FilterBank& bank, const PacketPlace& place, bool isSignal,
           Workspace& workspace) {
    const Block& block = place.block;
    if (isSignal) return step(bank, {block.origin}, block.rows, place.oddRow, workspace);
    return separableStep(step, bank, block, place.oddRow, place.oddCol, {}, workspace);
}

// Applies a step to packets, polling wherever a new level begins.
template <class Iterator>
Code applyByLevels(Step* step, const FilterBank& bank, const Block& data, Iterator packet, Iterator end,
                   const Poll& poll, Workspace& workspace) {
    double level = -1.0;
    for (; packet != end; ++packet) {
        if (packet->level != level && poll()) return Code::Interrupted;
        level = packet->level;
        const Code code = apply(step, bank, placeOf(data, *packet), data.cols == 1, workspace);
        if (code != Code::None) return code;
    }
    return Code::None;
}

}  // namespace

PacketPlace placeOf(const Block& data, std::uint32_t level, std::uint64_t row, std::uint64_t col) {
    const Rectangle place = packetPlace(data.rows, data.cols, level, row, col);
    double* origin = data.origin + static_cast<std::ptrdiff_t>(place.cols.start) * data.stride +
                     static_cast<std::ptrdiff_t>(place.rows.start);
    const Block block = {origin, data.stride, static_cast<std::uint32_t>(place.rows.length),
                         static_cast<std::uint32_t>(place.cols.length)};
    return {block, row % 2 != 0, col % 2 != 0};
}

PacketPlace placeOf(const Block& data, const Packet& packet) {
    return placeOf(data, static_cast<std::uint32_t>(packet.level), static_cast<std::uint64_t>(packet.row),
                   static_cast<std::uint64_t>(packet.col));
}

Code splitLevel(const BoundaryTreatment& boundary, const FilterBank& bank, const Block& data,
                std::uint32_t level, Workspace& workspace) {
    const std::uint64_t rows = std::uint64_t{1} << level;
    const std::uint64_t cols = data.cols == 1 ? 1 : rows;
    for (std::uint64_t row = 0; row < rows; ++row) {
        for (std::uint64_t col = 0; col < cols; ++col) {
            const PacketPlace place = placeOf(data, level, row, col);
            const Code code = apply(boundary.analysis, bank, place, data.cols == 1, workspace);
            if (code != Code::None) return code;
        }
    }
    return Code::None;
}

Code splitPackets(const BoundaryTreatment& boundary, const FilterBank& bank, const Block& data,
                  const PacketList& splits, const Poll& poll, Workspace& workspace) {
    return applyByLevels(boundary.analysis, bank, data, std::make_reverse_iterator(splits.end()),
                         std::make_reverse_iterator(splits.begin()), poll, workspace);
}

Code mergePackets(const BoundaryTreatment& boundary, const FilterBank& bank, const Block& data,
                  const PacketList& splits, const Poll& poll, Workspace& workspace) {
    return applyByLevels(boundary.synthesis, bank, data, splits.begin(), splits.end(), poll, workspace);
}

}  // namespace undula
