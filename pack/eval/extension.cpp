#include "eval/extension.h"

#include <algorithm>

#include "dwt/subband_layout.h"
#include "eval/packet_function.h"

namespace undula {

namespace {

bool isOdd(std::uint64_t n) {
    return n % 2 != 0;
}

}  // namespace

std::int64_t PacketContinuation::period() const {
    const std::int64_t mirrored = std::max<std::int64_t>(0, from - to + 1);
    return std::max<std::int64_t>(1, length + zeroFirst + mirrored);
}

std::int64_t PacketContinuation::source(std::int64_t place) const {
    if (place < length) return place;
    if (zeroFirst && place == length) return -1;
    return from - (place - length - zeroFirst);
}

PacketContinuation continuationOf(const FilterBank& bank, std::uint64_t n, std::uint32_t level,
                                  std::uint32_t index) {
    const auto length = static_cast<std::int64_t>(subband(n, level, index).length);
    const bool lowPass = level == 0 || grayDigit(index, 0) == 0;
    const bool wholeSample = isOdd(static_cast<std::uint64_t>(bank.Lb));
    // What was split to give the packet; the data itself counts as the low-pass part of itself.
    const bool oddOrigin =
        isOdd(level == 0 ? static_cast<std::uint64_t>(length) : subband(n, level - 1, index >> 1).length);
    if (lowPass) return {length, length - 1 - oddOrigin, wholeSample ? 1 : 0, 1.0, false};
    if (wholeSample) return {length, length - 2 + oddOrigin, 0, 1.0, false};
    return {length, length - 1, 0, -1.0, oddOrigin};
}

}  // namespace undula
