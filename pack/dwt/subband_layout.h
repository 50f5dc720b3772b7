// Where the subbands of transformed data and the packets of a packet table lie.
#pragma once

#include <cstdint>

namespace undula {

// Consecutive coefficients.
struct Segment {
    std::uint64_t start;
    std::uint64_t length;
};

// A rectangle of coefficients of an image.
struct Rectangle {
    Segment rows;
    Segment cols;
};

// Subband or packet `index` of `level` among n coefficients, for index < 2^level; level 0 is the
// whole. Each split gives ceil(m/2) low-pass and floor(m/2) high-pass coefficients; the low-pass
// part stands first below a part of even index, the high-pass part below one of odd index. So the
// subbands of a level stand in the order of increasing frequency.
Segment subband(std::uint64_t n, std::uint32_t level, std::uint64_t index);

// A packet by its level and its positions down the columns and along the rows; a packet of a signal
// has column position 0.
struct PacketIndex {
    std::uint32_t level;
    std::uint64_t row;
    std::uint64_t col;
};

// The place of a packet among rows x cols coefficients. Of a signal, which has fewer than two columns,
// a packet spans the columns.
Rectangle packetPlace(std::uint64_t rows, std::uint64_t cols, const PacketIndex& packet);

// Calls visit(packet) for all packets of a level that `top` is split into, row by row, until one returns
// a failure.
template <class Visit>
auto forPacketsBelow(bool isSignal, const PacketIndex& top, std::uint32_t level, Visit visit)
    -> decltype(visit(PacketIndex())) {
    const std::uint32_t down = level - top.level;
    const std::uint64_t rows = std::uint64_t{1} << down;
    const std::uint64_t cols = isSignal ? 1 : rows;
    for (std::uint64_t row = 0; row < rows; ++row) {
        for (std::uint64_t col = 0; col < cols; ++col) {
            if (auto failure = visit(PacketIndex{level, top.row * rows + row, top.col * cols + col}))
                return failure;
        }
    }
    return {};
}

template <class Visit>
auto forPacketsOfLevel(bool isSignal, std::uint32_t level, Visit visit) -> decltype(visit(PacketIndex())) {
    return forPacketsBelow(isSignal, {}, level, visit);
}

}  // namespace undula
