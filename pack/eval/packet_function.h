// Values of scaling functions, wavelets and wavelet packets at single points.
//
// The functions of a filter set are W_0, the scaling function, and W_(2m+d)(t) = sqrt(2) sum over q of
// f_d[q] W_m(2t - o_d - q), with f_0 and f_1 the set's low-pass and high-pass filter and o_d the
// position of the first tap. Packet n, counted by frequency, is W of the Gray code of n: packet 0 is
// the scaling function, packet 1 the wavelet.
//
// Source: R. R. Coifman, Y. Meyer, M. V. Wickerhauser, Wavelet analysis and signal processing, in:
// Wavelets and their applications (Jones and Bartlett, 1992), 153-178.
#pragma once

#include <cstdint>

#include "filters/filter_bank.h"
#include "frame/errors.h"
#include "frame/memory.h"
#include "frame/poll.h"

namespace undula {

// The filters of one direction, and the tabulated scaling function of the low-pass filter.
struct FilterSet {
    Channels channels;
    const double* cascade;
};

inline FilterSet analysisSet(const FilterBank& bank) {
    return {analysisChannels(bank), bank.cascadeA};
}
inline FilterSet synthesisSet(const FilterBank& bank) {
    return {synthesisChannels(bank), bank.cascadeS};
}

// Digit `position` of the Gray code, and how many digits a packet has.
constexpr std::uint32_t grayCode(std::uint32_t packet) {
    return packet ^ (packet >> 1);
}
constexpr std::uint32_t grayDigit(std::uint32_t packet, int position) {
    return grayCode(packet) >> position & 1;
}
int digitCount(std::uint32_t packet);

// A packet function, dilated by 2^level and shifted by multiples of that.
struct PacketFunction {
    std::uint32_t packet = 0;
    std::int32_t level = 0;
    std::int32_t shift = 0;
};

// 2^(-level) W(2^(-level) x - shift), from the table at the grid point at or below; 32 grid points a
// unit. Exactly 0 outside the function's support, wherever that is. Polls once a digit of the packet;
// the work grows as 2^digits.
Result<double> evaluatePacket(const FilterSet& set, const PacketFunction& function, double x,
                              const Poll& poll, Workspace& workspace);

// Where the function of level 0 and shift 0 is not 0.
struct Support {
    double first;
    double last;
};
Support supportOf(const FilterSet& set, std::uint32_t packet);

}  // namespace undula
