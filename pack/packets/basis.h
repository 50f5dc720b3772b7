// Packet bases: which packets of a table represent the data.
//
// Source: R. R. Coifman, M. V. Wickerhauser, Entropy-based algorithms for best basis selection, IEEE
// Trans. Information Theory 38 (1992) 713-718.
#pragma once

#include <cstddef>
#include <cstdint>

#include "dwt/subband_layout.h"
#include "frame/errors.h"
#include "frame/memory.h"

namespace undula {

// A packet as a user writes it: its level, and its position in the order of frequency; for an image
// one position down the columns and one along the rows. A signal's packet has column position 0.
struct Packet {
    double level;
    double row;
    double col;

    // Of a packet whose entries have been checked against data.
    PacketIndex index() const {
        return {static_cast<std::uint32_t>(level), static_cast<std::uint64_t>(row),
                static_cast<std::uint64_t>(col)};
    }
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

    // The largest level, truncated; NaN and negative levels count as 0. At most 2^32, which no data reaches.
    std::uint64_t depth() const;
};

// Whether every entry can be a packet: levels and positions are whole numbers, and a position is below
// 2^level. The failure is that of the first entry that cannot, in the order of the rows.
Failure checkEntries(const Basis& basis);

// The packets that are split on the way to those of a basis whose entries have been checked, the deepest
// first; "invalid packet basis" unless the basis tiles the data exactly. Repeated rows count once. The
// cost depends on the number of rows, whatever their levels.
Result<PacketList> findSplits(const Basis& basis);

// Leaves the first of equal packets, in the order of the list. False when there is no memory.
bool removeRepeats(PacketList& list);

}  // namespace undula
