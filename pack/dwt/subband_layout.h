// Where the subbands of transformed data and the packets of a packet table lie.
#pragma once

#include <cstdint>

namespace undula {

// Consecutive coefficients.
struct Segment {
    std::uint64_t start;
    std::uint64_t length;
};

// Subband or packet `index` of `level` among n coefficients, for index < 2^level; level 0 is the
// whole. Each split gives ceil(m/2) low-pass and floor(m/2) high-pass coefficients; the low-pass
// part stands first below a part of even index, the high-pass part below one of odd index. So the
// subbands of a level stand in the order of increasing frequency.
Segment subband(std::uint64_t n, std::uint32_t level, std::uint64_t index);

}  // namespace undula
