// Packet bases: which packets of a table represent the data.
//
// Source: R. R. Coifman, M. V. Wickerhauser, Entropy-based algorithms for best basis selection, IEEE
// Trans. Information Theory 38 (1992) 713-718.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/errors.h"
#include "frame/memory.h"

namespace undula {

// A packet as a user writes it: its level, and its position in the order of frequency; for an image
// one position down the columns and one along the rows. A signal's packet has column position 0.
struct Packet {
    double level;
    double row;
    double col;
};

// Packets in some order.
struct PacketList {
    Array<Packet> packets;
    std::size_t count = 0;

    const Packet& operator[](std::size_t i) const { return packets[i]; }
    const Packet* begin() const { return packets.data(); }
    const Packet* end() const { return packets.data() + count; }
};

// The rows of a basis, in the user's order.
struct Basis {
    PacketList rows;
    int dimensions = 1;

    // The largest level, truncated; what is no level counts as 0. At most 2^32, which no data reaches.
    std::uint64_t depth() const;
};

// Whether every entry can be a packet: levels and positions are whole numbers, and a position is below
// 2^level. Answers the complaint about the first entry that is not, in the order of the rows.
Code checkEntries(const Basis& basis);

// Whether the packets, whose entries have been checked, tile the data exactly. If they do, `splits`
// receives the packets that are split on the way to them, the deepest first. Repeated rows count
// once. The cost depends on the number of rows, whatever their levels.
Code findSplits(const Basis& basis, PacketList& splits);

// Leaves the first of equal packets, in the order of the list. False when there is no memory.
bool removeRepeats(PacketList& list);

}  // namespace undula
