// Integer arithmetic: remainders, halves, and how often lengths can be halved.
#pragma once

#include <bit>
#include <cstdint>

namespace undula {

// The remainder from 0 to n - 1.
constexpr std::int64_t modulo(std::int64_t x, std::int64_t n) {
    const std::int64_t remainder = x % n;
    return remainder < 0 ? remainder + n : remainder;
}

// Rounded down, and rounded up.
constexpr std::int64_t floorHalf(std::int64_t x) {
    return x >> 1;
}
constexpr std::int64_t ceilHalf(std::int64_t x) {
    return (x + 1) >> 1;
}

// floor(log2 n), and 0 for n < 2: the deepest level of n coefficients that are halved by rounding.
constexpr std::uint32_t deepestLevel(std::uint64_t n) {
    return n < 2 ? 0 : static_cast<std::uint32_t>(std::bit_width(n)) - 1;
}

// Whether 2^levels divides n. Only level 0 divides emptiness.
constexpr bool divisible(std::uint64_t n, std::uint64_t levels) {
    return levels == 0 || (n != 0 && static_cast<std::uint64_t>(std::countr_zero(n)) >= levels);
}

// ceil(n / 2^level): the length after that many halvings that round up.
constexpr std::uint64_t halved(std::uint64_t n, std::uint32_t level) {
    return level >= 64 ? (n != 0) : (n >> level) + ((n & ((std::uint64_t{1} << level) - 1)) != 0);
}

}  // namespace undula
