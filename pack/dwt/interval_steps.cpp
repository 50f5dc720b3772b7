// The interval steps: at the ends, boundary filters take the place of the interior ones.
#include <algorithm>

#include "dwt/filtering.h"

namespace undula {

namespace {

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

Failure interval_analysis_step(const FilterBank& bank, const Lines& lines, std::uint32_t n, bool swap,
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
    return {};
}

Failure interval_synthesis_step(const FilterBank& bank, const Lines& lines, std::uint32_t n, bool swap,
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
    double* memory = workspace.room(2 * partRoom + 2 * endRoom + leftRoom + Merger::blockRoom(lines.count));
    if (memory == nullptr) return Code::OutOfMemory;

    const auto read = [&](double* to, Index start, Index count) {
        return readCoefficients(to, firstCoefficient, lastCoefficient, lines, start, {count});
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
    merger.mergeLines(lines, leftLength, static_cast<Index>(n) - 1, blockMemory);
    synthesiseEnd(rightEnd(bank, n), rows, lowEnds, highEnds,
                  [&](Index p) { return lines.origin + p * lines.stride; });
    return {};
}

}  // namespace undula
