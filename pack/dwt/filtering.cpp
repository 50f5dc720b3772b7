#include "dwt/filtering.h"

#include <algorithm>

namespace undula {

namespace {

// Writes lines of coefficients to their place among the lines; `from` is contiguous.
void placeLines(const double* from, const Lines& lines, Index start, Index count) {
    for (Index k = 0; k < count; ++k)
        copyLine(from + k * lines.count, lines.origin + (start + k) * lines.stride, lines.count);
}

// Numbers that are merged at once, so that they pass from sum to signal within the nearest cache.
constexpr Index mergeBlock = 1024;

// The positions that are merged at once, of `width` signals side by side.
Index blockPositions(Index width) {
    return std::max<Index>(2, mergeBlock / width & ~Index{1});
}

}  // namespace

void filterLines(const Filter& filter, const Phases& signal, Index first, Index count, const Lines& lines,
                 Index start, double* scratch) {
    Term terms[mostTerms];
    const Index position = filter.offset + 2 * first;
    for (Index tap = 0; tap < filter.count; ++tap) terms[tap] = {filter.taps[tap], signal.at(position + tap)};
    const auto size = static_cast<std::size_t>(std::max<Index>(count, 0) * lines.count);
    if (lines.stride == lines.count) {
        weightedSum(terms, filter.count, lines.origin + start * lines.stride, size);
    } else {
        weightedSum(terms, filter.count, scratch, size);
        placeLines(scratch, lines, start, count);
    }
}

Padded readCoefficients(double* memory, Index first, Index last, const Lines& lines, Index start,
                        const CoefficientExtension& extension) {
    const Index width = lines.count;
    const Index given = extension.length;
    const Padded padded = {memory - first * width, width};
    zeroLine(padded.at(first), -first * width);
    zeroLine(padded.at(given), (last + 1 - given) * width);
    if (lines.stride == width) {
        copyLine(lines.origin + start * width, padded.at(0), given * width);
    } else {
        for (Index k = 0; k < given; ++k)
            copyLine(lines.origin + (start + k) * lines.stride, padded.at(k), width);
    }
    for (Index k = given; k < extension.period(); ++k) {
        const Index source = extension.source(k);
        if (source < 0) continue;
        const double* from = padded.at(source);
        std::transform(from, from + width, padded.at(k), [&](double x) { return extension.sign * x; });
    }
    return padded;
}

void Merger::sum(Sum* weighted, const Phases& out, Index from, Index to) const {
    for (Index parity = 0; parity < 2; ++parity) {
        const Index start = from + ((from ^ parity) & 1);
        if (start > to) continue;
        Term terms[mostTerms];
        const int termCount = termsAt(start, terms);
        const Index count = floorHalf(to - start) + 1;
        weighted(terms, termCount, out.at(start), static_cast<std::size_t>(count * low.width));
    }
}

int Merger::termsAt(Index position, Term* terms) const {
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

std::uint64_t Merger::blockRoom(Index width) {
    return Phases::room(0, blockPositions(width), width);
}

void Merger::mergeLines(const Lines& lines, Index from, Index to, double* scratch) const {
    const Index positions = blockPositions(lines.count);
    for (Index start = from; start <= to; start += positions) {
        const Index count = std::min(positions, to + 1 - start);
        const Phases block(scratch, start, start + positions, lines.count);
        sum(weightedSum, block, start, start + count - 1);
        block.write(lines, start, count);
    }
}

}  // namespace undula
