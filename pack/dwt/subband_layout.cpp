#include "dwt/subband_layout.h"

namespace undula {

Segment subband(std::uint64_t n, std::uint32_t level, std::uint64_t index) {
    Segment segment = {0, n};
    if (n == 0) return segment;
    std::uint64_t parent = 0;
    for (std::uint32_t bit = level; bit-- > 0;) {
        // Beyond 64 bits the index has no ones.
        const std::uint64_t child = bit < 64 ? index >> bit & 1 : 0;
        const std::uint64_t smaller = segment.length / 2;
        const std::uint64_t first = parent == 0 ? segment.length - smaller : smaller;
        segment = child == 0 ? Segment{segment.start, first}
                             : Segment{segment.start + first, segment.length - first};
        parent = child;
    }
    return segment;
}

Rectangle packetPlace(std::uint64_t rows, std::uint64_t cols, const PacketIndex& packet) {
    return {subband(rows, packet.level, packet.row),
            cols < 2 ? Segment{0, cols} : subband(cols, packet.level, packet.col)};
}

}  // namespace undula
