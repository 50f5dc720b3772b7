#include "packets/packet_steps.h"

#include <algorithm>
#include <iterator>

namespace undula {

namespace {

// The parities of a packet's positions tell whether its high-pass part stands first.
Swaps swapsOf(const PacketIndex& packet) {
    return {packet.row % 2 != 0, packet.col % 2 != 0};
}

Block packetOf(const Block& data, const PacketIndex& packet) {
    return partOf(data, packetPlace(data.rows, data.cols, packet));
}

// Where the two parts of n coefficients start.
struct Starts {
    std::uint32_t low;
    std::uint32_t high;

    Starts(std::uint32_t n, bool swap) : low(swap ? n / 2 : 0), high(swap ? 0 : n - n / 2) {}
};

Failure split(const BoundaryTreatment& boundary, const FilterBank& bank, const Block& from, const Block& to,
              const PacketIndex& packet, Workspace& workspace) {
    const Block in = packetOf(from, packet);
    const Block out = packetOf(to, packet);
    const Swaps swaps = swapsOf(packet);
    if (from.cols != 1) return splitImage(boundary, bank, in, out, swaps, {}, workspace);
    const auto [low, high] = Starts(out.rows, swaps.inColumns);
    return boundary.analysis(bank, in.origin, in.rows, out.origin + low, out.origin + high);
}

// A signal's packet goes through scratch.
const double* setAside(const Block& signal, Workspace& workspace) {
    double* scratch = workspace.room(signal.rows);
    if (scratch != nullptr) std::copy_n(signal.origin, signal.rows, scratch);
    return scratch;
}

Failure splitInPlace(const BoundaryTreatment& boundary, const FilterBank& bank, const Block& data,
                     const PacketIndex& packet, Workspace& workspace) {
    if (data.cols != 1) return split(boundary, bank, data, data, packet, workspace);
    const Block place = packetOf(data, packet);
    const double* samples = setAside(place, workspace);
    if (samples == nullptr) return Code::OutOfMemory;
    const auto [low, high] = Starts(place.rows, swapsOf(packet).inColumns);
    return boundary.analysis(bank, samples, place.rows, place.origin + low, place.origin + high);
}

Failure mergeInPlace(const BoundaryTreatment& boundary, const FilterBank& bank, const Block& data,
                     const PacketIndex& packet, Workspace& workspace) {
    const Block place = packetOf(data, packet);
    const Swaps swaps = swapsOf(packet);
    if (data.cols != 1)
        return mergeImage(boundary, bank, place, smoothPart(place, swaps), place, swaps, {}, workspace);
    const double* coefficients = setAside(place, workspace);
    if (coefficients == nullptr) return Code::OutOfMemory;
    const auto [low, high] = Starts(place.rows, swaps.inColumns);
    return boundary.synthesis(bank, coefficients + low, coefficients + high, place.rows, place.origin);
}

using InPlace = Failure(const BoundaryTreatment& boundary, const FilterBank& bank, const Block& data,
                        const PacketIndex& packet, Workspace& workspace);

// Applies a step to packets, polling wherever a new level begins.
template <class Iterator>
Failure applyByLevels(InPlace* step, const BoundaryTreatment& boundary, const FilterBank& bank,
                      const Block& data, Iterator packet, Iterator end, const Poll& poll,
                      Workspace& workspace) {
    double level = -1.0;
    for (; packet != end; ++packet) {
        if (packet->level != level && poll()) return Code::Interrupted;
        level = packet->level;
        if (auto failure = step(boundary, bank, data, packet->index(), workspace)) return failure;
    }
    return {};
}

}  // namespace

// As long as packets are larger than a cache, level after level; then one packet after the other, each
// down to the last level.
Failure splitIntoTable(const BoundaryTreatment& boundary, const FilterBank& bank, const Block* levels,
                       std::uint32_t count, const Poll& poll, Workspace& workspace) {
    constexpr std::uint64_t cached = std::uint64_t{1} << 16;
    const bool isSignal = levels[0].cols == 1;
    const auto splitBelow = [&](const PacketIndex& top, std::uint32_t level) {
        return forPacketsBelow(isSignal, top, level, [&](const PacketIndex& packet) {
            return split(boundary, bank, levels[level], levels[level + 1], packet, workspace);
        });
    };
    std::uint64_t size = std::uint64_t{levels[0].rows} * levels[0].cols;
    std::uint32_t level = 0;
    for (; level < count && size > cached; ++level, size /= isSignal ? 2 : 4) {
        if (poll()) return Code::Interrupted;
        if (auto failure = splitBelow({}, level)) return failure;
    }
    SpreadPolls polls(poll, count - level, std::uint64_t{1} << (isSignal ? level : 2 * level));
    return forPacketsBelow(isSignal, {}, level, [&](const PacketIndex& packet) -> Failure {
        if (polls.beforeStep()) return Code::Interrupted;
        for (std::uint32_t below = level; below < count; ++below) {
            if (auto failure = splitBelow(packet, below)) return failure;
        }
        return {};
    });
}

Failure splitPackets(const BoundaryTreatment& boundary, const FilterBank& bank, const Block& data,
                     const PacketList& splits, const Poll& poll, Workspace& workspace) {
    return applyByLevels(splitInPlace, boundary, bank, data, std::make_reverse_iterator(splits.end()),
                         std::make_reverse_iterator(splits.begin()), poll, workspace);
}

Failure mergePackets(const BoundaryTreatment& boundary, const FilterBank& bank, const Block& data,
                     const PacketList& splits, const Poll& poll, Workspace& workspace) {
    return applyByLevels(mergeInPlace, boundary, bank, data, splits.begin(), splits.end(), poll, workspace);
}

}  // namespace undula
