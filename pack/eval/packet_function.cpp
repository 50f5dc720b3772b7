#include "eval/packet_function.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>
#include <utility>

namespace undula {

namespace {

using Index = std::int64_t;

constexpr double gridPoints = 32.0;
// No function is anything but 0 so far out, and every number up to here is an index.
constexpr double beyondAll = 0x1p50;
constexpr std::uint64_t mostBytes = std::uint64_t{1} << 32;

// The tabulated scaling function at a grid index. The table begins at 31 times the first tap's
// position, which is where the five-stage cascade begins.
double lookUp(const FilterSet& set, Index gridIndex) {
    const Index first = Index{31} * set.channels.low.offset;
    const Index last = Index{31} * set.channels.low.last();
    return first <= gridIndex && gridIndex <= last ? set.cascade[gridIndex - first] : 0.0;
}

// The samples of the scaling function that a packet's value is made of.
struct SampleRange {
    Index start = 0;
    Index end = 0;

    Index count() const { return end - start + 1; }
};

SampleRange samplesOf(const FilterSet& set, std::uint32_t packet) {
    SampleRange range;
    for (int digit = 0; digit < digitCount(packet); ++digit) {
        const Filter& filter = set.channels[grayDigit(packet, digit)];
        range.start = filter.offset + 2 * range.start;
        range.end = filter.last() + 2 * range.end;
    }
    return range;
}

// 2^exponent x. As std::ldexp, which is slow for what is done at every point; out of line like that, so that
// x is rounded to a double also where registers have room for more digits. Not every library has
// std::bit_cast.
[[gnu::noinline]] double timesPowerOfTwo(double x, Index exponent) {
    constexpr Index bias = 1023;
    if (exponent <= -bias || exponent > bias) return std::ldexp(x, static_cast<int>(exponent));
    return x * __builtin_bit_cast(double, static_cast<std::uint64_t>(exponent + bias) << 52);
}

// 2^exponent x, or a number beyond all that is small enough to be multiplied further without a fault.
double scaled(double x, Index exponent) {
    if (x == 0.0 || !std::isfinite(x)) return x;
    if (std::ilogb(x) + exponent > 900) return std::copysign(0x1p900, x);
    return timesPowerOfTwo(x, std::max<Index>(exponent, -5000));
}

// The grid position of a point among the samples, counted from the first one; NaN or beyond all where
// there is none.
double gridPosition(const PacketFunction& function, double x, Index firstSample) {
    const double position = scaled(x, -Index{function.level}) - function.shift;
    const double spread =
        timesPowerOfTwo(position, digitCount(function.packet)) - static_cast<double>(firstSample);
    return gridPoints * spread;
}

// One two-scale relation: every second position of the filter's correlation with the samples.
Index filterSamples(const Filter& filter, const double* samples, Index count, double* out) {
    const Index outputs = (count - filter.count + 2) >> 1;
    for (Index i = 0; i < outputs; ++i) {
        double sum = 0.0;
        for (std::int32_t q = 0; q < filter.count; ++q) sum += filter.taps[q] * samples[2 * i + q];
        out[i] = sum;
    }
    return outputs;
}

// sqrt(2)^exponent x; beyond the range of numbers it overflows.
double timesPowerOfRoot(double x, Index exponent) {
    const double odd = exponent % 2 != 0 ? std::numbers::sqrt2 : 1.0;
    const Index half = (exponent - (exponent % 2 != 0)) / 2;
    return x == 0.0 ? 0.0 : timesPowerOfTwo(x * odd, std::clamp<Index>(half, -10000, 10000));
}

}  // namespace

int digitCount(std::uint32_t packet) {
    return static_cast<int>(std::bit_width(packet));
}

Result<double> evaluatePacket(const FilterSet& set, const PacketFunction& function, double x,
                              const Poll& poll, Workspace& workspace) {
    const SampleRange range = samplesOf(set, function.packet);
    const auto room = 2 * static_cast<std::uint64_t>(range.count());
    if (room >= mostBytes / sizeof(double)) return Code::OutOfMemory;
    const double position = gridPosition(function, x, range.start);
    if (std::isnan(position) || std::fabs(position) > beyondAll) return 0.0;
    double* samples = workspace.room(room);
    if (samples == nullptr) return Code::OutOfMemory;
    double* next = samples + range.count();

    const auto gridIndex = static_cast<Index>(std::floor(position));
    Index count = range.count();
    for (Index i = 0; i < count; ++i) samples[i] = lookUp(set, gridIndex - 32 * i);
    const int digits = digitCount(function.packet);
    for (int digit = digits; digit-- > 0;) {
        if (poll()) return Code::Interrupted;
        count = filterSamples(set.channels[grayDigit(function.packet, digit)], samples, count, next);
        std::swap(samples, next);
    }
    return timesPowerOfRoot(samples[0], Index{digits} + 5 - 2 * Index{function.level});
}

Support supportOf(const FilterSet& set, std::uint32_t packet) {
    const Filter& low = set.channels.low;
    Support support = {static_cast<double>(low.offset), static_cast<double>(low.last())};
    for (int digit = digitCount(packet); digit-- > 0;) {
        const Filter& filter = set.channels[grayDigit(packet, digit)];
        support.first = (support.first + filter.offset) / 2.0;
        support.last = (support.last + filter.last()) / 2.0;
    }
    return support;
}

}  // namespace undula
