#include "dwt/steps.h"

#include <algorithm>
#include <cstring>

#include "dwt/weighted_sum.h"

namespace undula {

namespace {

using Index = std::ptrdiff_t;

// The largest number of terms that meet at one output: all taps of one filter in an analysis,
// every second tap of both in a synthesis.
constexpr int mostTerms = 256;

Index floorHalf(Index x) {
    return x >> 1;
}
Index ceilHalf(Index x) {
    return (x + 1) >> 1;
}

// The non-negative remainder.
Index modulo(Index x, Index n) {
    const Index remainder = x % n;
    return remainder < 0 ? remainder + n : remainder;
}

struct Filter {
    const double* taps;
    Index count;
    Index offset;

    Index last() const { return offset + count - 1; }
};

// The two filters that a step applies.
struct Channels {
    Filter low;
    Filter high;

    Index first() const { return std::min(low.offset, high.offset); }
    Index last() const { return std::max(low.last(), high.last()); }
};

Channels analysisChannels(const FilterBank& bank) {
    return {{bank.ha, bank.La, bank.oa}, {bank.ga, bank.Lb, bank.ob}};
}

Channels synthesisChannels(const FilterBank& bank) {
    return {{bank.hs, bank.Lb, bank.os}, {bank.gs, bank.La, bank.og}};
}

// Offsets far outside an n-periodic signal, brought near it: the work buffer is to follow the
// data, not a number that a user wrote.
Channels nearOrigin(Channels channels, Index n) {
    constexpr Index far = 4096;
    if (channels.first() < -n - far || channels.last() > n + far) {
        for (Filter* filter : {&channels.low, &channels.high}) filter->offset = modulo(filter->offset, n);
    }
    return channels;
}

// Where the parts of the coefficients stand.
struct Parts {
    Index lowCount;
    Index highCount;
    Index lowStart;
    Index highStart;

    Parts(Index n, bool swap)
        : lowCount(ceilHalf(n)),
          highCount(floorHalf(n)),
          lowStart(swap ? floorHalf(n) : 0),
          highStart(swap ? 0 : ceilHalf(n)) {}
};

void copyLine(const double* from, double* to, Index count) {
    std::memcpy(to, from, static_cast<std::size_t>(count) * sizeof(double));
}

void zeroLine(double* to, Index count) {
    std::fill_n(to, count, 0.0);
}

void addLine(const double* from, double* to, Index count) {
    for (Index i = 0; i < count; ++i) to[i] += from[i];
}

// Positions `first` to `last` of the lines, split by the parity of the position, so that a filter
// that moves by two samples an output meets consecutive numbers.
class Phases {
 public:
    // Doubles for the positions.
    static std::uint64_t room(Index first, Index last, Index width) {
        return 2 * static_cast<std::uint64_t>(perPhase(first, last)) * static_cast<std::uint64_t>(width);
    }

    Phases(double* memory, Index first, Index last, Index width)
        : lineWidth(width),
          firstPair(floorHalf(first)),
          phases{memory, memory + perPhase(first, last) * width} {}

    double* at(Index position) const {
        return phases[position & 1] + (floorHalf(position) - firstPair) * lineWidth;
    }

    // Reads positions 0 .. n - 1.
    void read(const Lines& lines, Index n) const {
        double* even = at(0);
        double* odd = at(1);
        if (lineWidth == 1 && lines.stride == 1) {
            const double* x = lines.origin;
            for (Index pair = 0; pair < floorHalf(n); ++pair) {
                even[pair] = x[2 * pair];
                odd[pair] = x[2 * pair + 1];
            }
            if (n & 1) even[floorHalf(n)] = x[n - 1];
            return;
        }
        for (Index p = 0; p < n; ++p) copyLine(lines.origin + p * lines.stride, at(p), lineWidth);
    }

    // Writes `count` positions back, from an even one on.
    void write(const Lines& lines, Index start, Index count) const {
        const double* even = at(start);
        const double* odd = at(start + 1);
        if (lineWidth == 1 && lines.stride == 1) {
            double* x = lines.origin + start;
            for (Index pair = 0; pair < floorHalf(count); ++pair) {
                x[2 * pair] = even[pair];
                x[2 * pair + 1] = odd[pair];
            }
            if (count & 1) x[count - 1] = even[floorHalf(count)];
            return;
        }
        for (Index p = start; p < start + count; ++p)
            copyLine(at(p), lines.origin + p * lines.stride, lineWidth);
    }

 private:
    static Index perPhase(Index first, Index last) { return floorHalf(last) - floorHalf(first) + 1; }

    Index lineWidth;
    Index firstPair;
    double* phases[2];
};

// Terms of the outputs from `output` on: the filter's taps in their order.
int analysisTerms(const Filter& filter, const Phases& signal, Index output, Term* terms) {
    const Index start = filter.offset + 2 * output;
    for (Index tap = 0; tap < filter.count; ++tap) terms[tap] = {filter.taps[tap], signal.at(start + tap)};
    return static_cast<int>(filter.count);
}

// Writes lines of coefficients to their place among the lines; `from` is contiguous.
void placeLines(const double* from, const Lines& lines, Index start, Index count) {
    for (Index k = 0; k < count; ++k)
        copyLine(from + k * lines.count, lines.origin + (start + k) * lines.stride, lines.count);
}

// Outputs `first` .. `first + count - 1` of a filter, placed from `start` on. `scratch` has room
// for them.
void filterLines(const Filter& filter, const Phases& signal, Index first, Index count, const Lines& lines,
                 Index start, double* scratch) {
    Term terms[mostTerms];
    const int termCount = analysisTerms(filter, signal, first, terms);
    const auto size = static_cast<std::size_t>(std::max<Index>(count, 0) * lines.count);
    if (lines.stride == lines.count) {
        weightedSum(terms, termCount, lines.origin + start * lines.stride, size);
    } else {
        weightedSum(terms, termCount, scratch, size);
        placeLines(scratch, lines, start, count);
    }
}

// The position within 0 .. n - 1 that stands for one outside.
using Extension = Index (*)(Index position, Index n);

Index periodic(Index position, Index n) {
    return modulo(position, n);
}

// Mirrored about the end samples.
Index wholeSample(Index position, Index n) {
    const Index folded = modulo(position, 2 * n - 2);
    return folded < n ? folded : 2 * n - 2 - folded;
}

// Mirrored between the end samples and their repetitions.
Index halfSample(Index position, Index n) {
    const Index folded = modulo(position, 2 * n);
    return folded < n ? folded : 2 * n - 1 - folded;
}

Code analyse(const Channels& channels, Extension extension, const Lines& lines, Index n, bool swap,
             Workspace& workspace) {
    const Parts parts(n, swap);
    const Index first = std::min<Index>(0, channels.first());
    const Index last = std::max(n, n + channels.last());
    const std::uint64_t phaseRoom = Phases::room(first, last, lines.count);
    const auto outputRoom = static_cast<std::uint64_t>(parts.lowCount * lines.count);
    double* memory = workspace.room(phaseRoom + outputRoom);
    if (memory == nullptr) return Code::OutOfMemory;

    const Phases signal(memory, first, last, lines.count);
    signal.read(lines, n);
    const auto extend = [&](Index position) {
        copyLine(signal.at(extension(position, n)), signal.at(position), lines.count);
    };
    for (Index position = first; position < 0; ++position) extend(position);
    for (Index position = n; position <= last; ++position) extend(position);

    double* scratch = memory + phaseRoom;
    filterLines(channels.low, signal, 0, parts.lowCount, lines, parts.lowStart, scratch);
    filterLines(channels.high, signal, 0, parts.highCount, lines, parts.highStart, scratch);
    return Code::None;
}

// Coefficient lines with zeros before and after them, so that every output can meet every tap.
struct Padded {
    double* origin;  // of coefficient 0
    Index width;

    double* at(Index k) const { return origin + k * width; }
};

// Merges the coefficients of both channels. Position 2q + parity meets, of coefficient q - shift, the
// tap parity - offset + 2 shift of each channel.
class Merger {
 public:
    Merger(const Channels& filters, const Padded& lowPart, const Padded& highPart)
        : channels(filters), low(lowPart), high(highPart), shifts(shiftsOf(filters)) {}

    // The coefficients that positions `first` .. `last` meet.
    static Index firstCoefficient(const Channels& channels, Index first) {
        return std::min<Index>(0, floorHalf(first) - shiftsOf(channels).farthest);
    }
    static Index lastCoefficient(const Channels& channels, Index last) {
        return floorHalf(last) - shiftsOf(channels).nearest;
    }

    using Sum = void(const Term* terms, int termCount, double* out, std::size_t count);

    // Sums at the positions `from` .. `to` what the coefficients give, by increasing coefficient, each
    // time the low-pass channel first; with addWeightedSum, onto what `out` holds.
    void sum(Sum* weighted, const Phases& out, Index from, Index to) const {
        for (Index parity = 0; parity < 2; ++parity) {
            const Index start = from + ((from ^ parity) & 1);
            if (start > to) continue;
            Term terms[mostTerms];
            const int termCount = termsAt(start, terms);
            const Index count = floorHalf(to - start) + 1;
            weighted(terms, termCount, out.at(start), static_cast<std::size_t>(count * low.width));
        }
    }

 private:
    struct Shifts {
        Index nearest;
        Index farthest;
    };

    static Shifts shiftsOf(const Channels& channels) {
        return {ceilHalf(channels.first() - 1), floorHalf(channels.last())};
    }

    int termsAt(Index position, Term* terms) const {
        const Index parity = position & 1;
        const Index pair = floorHalf(position);
        int count = 0;
        const auto addTap = [&](const Filter& filter, const Padded& coefficients, Index shift) {
            const Index tap = parity - filter.offset + 2 * shift;
            if (0 <= tap && tap < filter.count)
                terms[count++] = {filter.taps[tap], coefficients.at(pair - shift)};
        };
        for (Index shift = shifts.farthest; shift >= shifts.nearest; --shift) {
            addTap(channels.low, low, shift);
            addTap(channels.high, high, shift);
        }
        return count;
    }

    Channels channels;
    Padded low;
    Padded high;
    Shifts shifts;
};

// How the given coefficients of a channel go on until there are `count` of them.
struct Continuation {
    Index count;
    double sign = 1.0;                                // of those that are added
    Index (*source)(Index k, Index given) = nullptr;  // whose value number k takes; -1: it is 0
};

Index mirrorFromLast(Index k, Index given) {
    return 2 * given - 1 - k;
}
Index mirrorBeforeLast(Index k, Index given) {
    return 2 * given - 2 - k;
}
Index mirrorAfterZero(Index k, Index given) {
    return k == given ? -1 : 2 * given - k;
}

// Reads a part of the coefficients, continued, with zeros from `first` and up to `last`.
Padded readCoefficients(double* memory, Index first, Index last, const Lines& lines, Index start, Index given,
                        const Continuation& continuation) {
    const Index width = lines.count;
    const Padded padded = {memory - first * width, width};
    zeroLine(padded.at(first), -first * width);
    zeroLine(padded.at(given), (last + 1 - given) * width);
    if (lines.stride == width) {
        copyLine(lines.origin + start * width, padded.at(0), given * width);
    } else {
        for (Index k = 0; k < given; ++k)
            copyLine(lines.origin + (start + k) * lines.stride, padded.at(k), width);
    }
    for (Index k = given; k < continuation.count; ++k) {
        const Index source = continuation.source(k, given);
        if (source < 0) continue;
        const double* from = padded.at(source);
        std::transform(from, from + width, padded.at(k), [&](double x) { return continuation.sign * x; });
    }
    return padded;
}

// Numbers that are merged at once, so that they pass from sum to signal within the nearest cache.
constexpr Index mergeBlock = 1024;

// The positions that are merged at once, of so many signals side by side.
Index blockPositions(Index width) {
    return std::max<Index>(2, mergeBlock / width & ~Index{1});
}

std::uint64_t blockRoom(Index width) {
    return Phases::room(0, blockPositions(width), width);
}

// Merges positions `from` .. `to` into the lines; `from` is even.
void mergeLines(const Merger& merger, const Lines& lines, Index from, Index to, double* scratch) {
    const Index positions = blockPositions(lines.count);
    for (Index start = from; start <= to; start += positions) {
        const Index count = std::min(positions, to + 1 - start);
        const Phases block(scratch, start, start + positions, lines.count);
        merger.sum(weightedSum, block, start, start + count - 1);
        block.write(lines, start, count);
    }
}

// Merges the two parts of n coefficients, continued to a period of `period` samples.
Code synthesise(const Channels& channels, const Lines& lines, Index n, Index period,
                const Continuation& lowContinuation, const Continuation& highContinuation, bool swap,
                Workspace& workspace) {
    const Parts parts(n, swap);
    const Index first = std::min<Index>(0, channels.first());
    const Index last = std::max(period, period + channels.last());
    const Index firstCoefficient = Merger::firstCoefficient(channels, first);
    const Index lastCoefficient = std::max(ceilHalf(period), Merger::lastCoefficient(channels, last));
    const auto partRoom = static_cast<std::uint64_t>((lastCoefficient - firstCoefficient + 1) * lines.count);
    const std::uint64_t beforeRoom = Phases::room(first, 0, lines.count);
    const std::uint64_t afterRoom = Phases::room(period, last, lines.count);
    double* memory = workspace.room(2 * partRoom + beforeRoom + afterRoom + blockRoom(lines.count));
    if (memory == nullptr) return Code::OutOfMemory;

    const auto read = [&](double* to, Index start, Index given, const Continuation& continuation) {
        return readCoefficients(to, firstCoefficient, lastCoefficient, lines, start, given, continuation);
    };
    const Padded low = read(memory, parts.lowStart, parts.lowCount, lowContinuation);
    const Padded high = read(memory + partRoom, parts.highStart, parts.highCount, highContinuation);
    const Merger merger(channels, low, high);
    const Phases before(memory + 2 * partRoom, first, 0, lines.count);
    const Phases after(memory + 2 * partRoom + beforeRoom, period, last, lines.count);
    merger.sum(weightedSum, before, first, -1);
    merger.sum(weightedSum, after, period, last);
    mergeLines(merger, lines, 0, n - 1, memory + 2 * partRoom + beforeRoom + afterRoom);

    // What lies outside the period is folded into it, position by position.
    const auto fold = [&](const Phases& outside, Index position) {
        const Index target = modulo(position, period);
        if (target < n) addLine(outside.at(position), lines.origin + target * lines.stride, lines.count);
    };
    for (Index position = first; position < 0; ++position) fold(before, position);
    for (Index position = last; position >= period; --position) fold(after, position);
    return Code::None;
}

// One end of the interval: its boundary rows, and how samples and outputs are counted from it.
struct End {
    EdgeRows low;
    EdgeRows high;
    Index n;
    bool right;

    // The t-th sample of n, and the row-th output of `outputs`, from this end.
    Index position(Index t) const { return right ? n - 1 - t : t; }
    Index output(Index row, Index outputs) const { return right ? outputs - 1 - row : row; }
};

End leftEnd(const FilterBank& bank, Index n) {
    return {bank.BLlo, bank.BLhi, n, false};
}
End rightEnd(const FilterBank& bank, Index n) {
    return {bank.BRlo, bank.BRhi, n, true};
}

Index edgeRowLength(Index rows, Index row) {
    return rows + 1 + 2 * row;
}

void analyseEnd(const End& end, Index rows, const Phases& signal, const Lines& lines, const Parts& parts) {
    const auto apply = [&](const double* row, Index length, Index output) {
        Term terms[mostTerms];
        for (Index t = 0; t < length; ++t) terms[t] = {row[t], signal.at(end.position(t))};
        weightedSum(terms, static_cast<int>(length), lines.origin + output * lines.stride,
                    static_cast<std::size_t>(lines.count));
    };
    for (Index i = 0; i < rows; ++i) {
        apply(end.low[i], edgeRowLength(rows, i), parts.lowStart + end.output(i, parts.lowCount));
        apply(end.high[i], edgeRowLength(rows, i), parts.highStart + end.output(i, parts.highCount));
    }
}

// Adds what the boundary rows of one end give; y(p) is where position p of the lines is.
template <class Position>
void synthesiseEnd(const End& end, Index rows, const Padded& low, const Padded& high, Position y) {
    for (Index i = 0; i < rows; ++i) {
        const double* s = low.at(end.output(i, 2 * rows));
        const double* d = high.at(end.output(i, 2 * rows));
        for (Index t = 0; t < edgeRowLength(rows, i); ++t) {
            double* sum = y(end.position(t));
            for (Index line = 0; line < low.width; ++line)
                sum[line] += s[line] * end.low[i][t] + d[line] * end.high[i][t];
        }
    }
}

// Moves the coefficients of the boundary rows, `rows` at each end, out of a part; zeros take their place.
Padded takeEnds(const Padded& part, Index count, Index rows, double* memory) {
    const Index size = rows * part.width;
    copyLine(part.at(0), memory, size);
    copyLine(part.at(count - rows), memory + size, size);
    zeroLine(part.at(0), size);
    zeroLine(part.at(count - rows), size);
    return {memory, part.width};
}

}  // namespace

Code periodic_analysis_step(const FilterBank& bank, const Lines& lines, std::uint32_t n, bool swap,
                            Workspace& workspace) {
    if (n < 2) return Code::InvalidLevel;
    return analyse(nearOrigin(analysisChannels(bank), n), periodic, lines, n, swap, workspace);
}

Code periodic_synthesis_step(const FilterBank& bank, const Lines& lines, std::uint32_t n, bool swap,
                             Workspace& workspace) {
    if (n < 2) return Code::InvalidLevel;
    const Parts parts(n, swap);
    return synthesise(nearOrigin(synthesisChannels(bank), n), lines, n, n, {parts.lowCount},
                      {parts.highCount}, swap, workspace);
}

Code symmetric_analysis_step(const FilterBank& bank, const Lines& lines, std::uint32_t n, bool swap,
                             Workspace& workspace) {
    if (n < 2) return Code::InvalidLevel;
    const Extension extension = bank.La % 2 != 0 ? wholeSample : halfSample;
    return analyse(analysisChannels(bank), extension, lines, n, swap, workspace);
}

Code symmetric_synthesis_step(const FilterBank& bank, const Lines& lines, std::uint32_t n, bool swap,
                              Workspace& workspace) {
    if (n < 2) return Code::InvalidLevel;
    const bool wholeSampled = bank.Lb % 2 != 0;
    const bool odd = n % 2 != 0;
    const Index period = wholeSampled ? 2 * static_cast<Index>(n) - 2 : 2 * static_cast<Index>(n);
    const Index half = period / 2;
    Continuation low = {half};
    Continuation high = {half};
    if (wholeSampled) {
        low.source = odd ? mirrorBeforeLast : mirrorFromLast;
        high.source = odd ? mirrorFromLast : mirrorBeforeLast;
    } else {
        low.source = odd ? mirrorBeforeLast : mirrorFromLast;
        high.source = odd ? mirrorAfterZero : mirrorFromLast;
        high.sign = -1.0;
    }
    return synthesise(synthesisChannels(bank), lines, n, period, low, high, swap, workspace);
}

Code interval_analysis_step(const FilterBank& bank, const Lines& lines, std::uint32_t n, bool swap,
                            Workspace& workspace) {
    if (n / 2 < static_cast<std::uint32_t>(bank.La)) return Code::InvalidLevel;
    const Parts parts(n, swap);
    const Index rows = bank.La / 2;
    const Index interior = static_cast<Index>(n) / 2 - 2 * rows;
    const std::uint64_t phaseRoom = Phases::room(0, n, lines.count);
    double* memory = workspace.room(phaseRoom + static_cast<std::uint64_t>(interior * lines.count));
    if (memory == nullptr) return Code::OutOfMemory;

    const Phases signal(memory, 0, n, lines.count);
    signal.read(lines, n);
    double* scratch = memory + phaseRoom;
    const Channels channels = analysisChannels(bank);
    analyseEnd(leftEnd(bank, n), rows, signal, lines, parts);
    filterLines(channels.low, signal, rows, interior, lines, parts.lowStart + rows, scratch);
    filterLines(channels.high, signal, rows, interior, lines, parts.highStart + rows, scratch);
    analyseEnd(rightEnd(bank, n), rows, signal, lines, parts);
    return Code::None;
}

Code interval_synthesis_step(const FilterBank& bank, const Lines& lines, std::uint32_t n, bool swap,
                             Workspace& workspace) {
    if (n / 2 < static_cast<std::uint32_t>(bank.La)) return Code::InvalidLevel;
    const Parts parts(n, swap);
    const Channels channels = synthesisChannels(bank);
    const Index rows = bank.La / 2;
    const Index firstCoefficient = Merger::firstCoefficient(channels, 0);
    const Index lastCoefficient = std::max(parts.lowCount, Merger::lastCoefficient(channels, n));
    const auto partRoom = static_cast<std::uint64_t>((lastCoefficient - firstCoefficient + 1) * lines.count);
    const auto endRoom = static_cast<std::uint64_t>(2 * rows * lines.count);
    const Index leftLength = 4 * rows;
    const std::uint64_t leftRoom = Phases::room(0, leftLength, lines.count);
    double* memory = workspace.room(2 * partRoom + 2 * endRoom + leftRoom + blockRoom(lines.count));
    if (memory == nullptr) return Code::OutOfMemory;

    const auto read = [&](double* to, Index start, Index count) {
        return readCoefficients(to, firstCoefficient, lastCoefficient, lines, start, count, {count});
    };
    const Padded low = read(memory, parts.lowStart, parts.lowCount);
    const Padded high = read(memory + partRoom, parts.highStart, parts.highCount);
    double* endMemory = memory + 2 * partRoom;
    const Padded lowEnds = takeEnds(low, parts.lowCount, rows, endMemory);
    const Padded highEnds = takeEnds(high, parts.highCount, rows, endMemory + endRoom);
    double* leftMemory = endMemory + 2 * endRoom;
    double* blockMemory = leftMemory + leftRoom;

    // Near the left end the boundary rows come first and the interior is added onto them.
    const Merger merger(channels, low, high);
    zeroLine(leftMemory, static_cast<Index>(leftRoom));
    const Phases left(leftMemory, 0, leftLength, lines.count);
    synthesiseEnd(leftEnd(bank, n), rows, lowEnds, highEnds, [&](Index p) { return left.at(p); });
    merger.sum(addWeightedSum, left, 0, leftLength - 1);
    left.write(lines, 0, leftLength);
    mergeLines(merger, lines, leftLength, static_cast<Index>(n) - 1, blockMemory);
    synthesiseEnd(rightEnd(bank, n), rows, lowEnds, highEnds,
                  [&](Index p) { return lines.origin + p * lines.stride; });
    return Code::None;
}

}  // namespace undula
