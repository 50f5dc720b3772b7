#include "dwt/image_steps.h"

#include <algorithm>

#include "dwt/signal_steps.h"

namespace undula {

namespace {

// Where the parts of n coefficients stand.
struct Parts {
    Segment low;
    Segment high;

    Parts(std::uint64_t n, bool swap) : low{swap ? n / 2 : 0, n - n / 2}, high{swap ? 0 : n - n / 2, n / 2} {}
};

// How many lines at either side are needed when all have been seen.
struct Reach {
    Index count;
    Index front = 0;
    Index back = 0;

    void include(Index line) {
        if (2 * line < count) {
            front = std::max(front, line + 1);
        } else {
            back = std::max(back, count - line);
        }
    }
};

// Lines that are made in order: the first ones stay, of the others the last ones, which take turns.
class Ring {
 public:
    Ring(Index lineCount, Index front, Index window) : kept(front), turns(window) {
        if (kept + turns > lineCount) {
            kept = lineCount;
            turns = 1;
        }
    }

    // Strides of powers of two would make the lines compete for the same places of the cache.
    static std::uint64_t paddedLength(std::uint64_t length) { return (length + 15) / 8 * 8; }
    std::uint64_t lines() const { return static_cast<std::uint64_t>(kept + turns); }
    bool keepsAll(Index lineCount) const { return kept == lineCount; }

    Index place(Index line) const { return line < kept ? line : kept + (line - kept) % turns; }

 private:
    Index kept;
    Index turns;
};

// Asks about the rows of an image while its output pairs are made.
class RowPolls {
 public:
    RowPolls(const Poll& rowPoll, std::uint64_t rowCount, Index pairCount)
        : poll(rowPoll), rows(rowCount), pairs(static_cast<std::uint64_t>(pairCount)) {}

    bool beforePair() { return askUpTo(rows * ++made / pairs); }
    bool atEnd() { return askUpTo(rows); }

 private:
    bool askUpTo(std::uint64_t count) {
        while (asked < count) {
            ++asked;
            if (poll()) return true;
        }
        return false;
    }

    const Poll& poll;
    std::uint64_t rows;
    std::uint64_t pairs;
    std::uint64_t made = 0;
    std::uint64_t asked = 0;
};

Block columnsOf(const Block& image, const Segment& columns) {
    return partOf(image, {{0, image.rows}, columns});
}

Reach reachOf(const AnalysisRows& rows, Index n) {
    Reach reach = {n};
    Row row;
    const auto note = [&](Index p) -> const double* {
        reach.include(p);
        return nullptr;
    };
    for (Index k = 0; k < rows.begin(); ++k) rows.fill(k, note, row);
    for (Index k = rows.end(); k < rows.count(); ++k) rows.fill(k, note, row);
    return reach;
}

}  // namespace

Block smoothPart(const Block& image, const Swaps& swaps) {
    return partOf(image, {Parts(image.rows, swaps.inColumns).low, Parts(image.cols, swaps.inRows).low});
}

Failure splitImage(const BoundaryTreatment& boundary, const FilterBank& bank, const Block& in,
                   const Block& out, const Swaps& swaps, const Poll& poll, Workspace& workspace) {
    const Ends& ends = *boundary.ends;
    if (in.rows < ends.shortest(bank) || in.cols < ends.shortest(bank)) return Code::InvalidLevel;
    const AnalysisRows rows(ends.analysis(bank, in.cols), in.cols);
    const Parts down(in.rows, swaps.inColumns);
    const Parts along(in.cols, swaps.inRows);

    const Index count = in.cols;
    const Reach reach = reachOf(rows, count);
    const bool streams = rows.first() <= 0 && rows.last() >= 0;
    const Ring ring(count, streams ? reach.front : count,
                    std::max<Index>(rows.last() - rows.first() + 1, reach.back));
    const std::uint64_t lineLength = Ring::paddedLength(in.rows);
    const bool inPlace = in.origin == out.origin;
    const Segment& second = swaps.inRows ? along.low : along.high;
    const std::uint64_t delayedRoom = inPlace ? second.length * lineLength : 0;
    double* memory = workspace.room(ring.lines() * lineLength + delayedRoom);
    if (memory == nullptr) return Code::OutOfMemory;
    const auto lineAt = [&](Index p) {
        return memory + static_cast<std::uint64_t>(ring.place(p)) * lineLength;
    };

    Block lowColumns = columnsOf(out, along.low);
    Block highColumns = columnsOf(out, along.high);
    Block& delayed = swaps.inRows ? lowColumns : highColumns;
    const Block delayedPlace = delayed;
    if (inPlace) {
        delayed.origin = memory + ring.lines() * lineLength;
        delayed.stride = static_cast<std::ptrdiff_t>(lineLength);
    }
    const auto lowAt = [&](Index k) { return lowColumns.column(static_cast<std::uint64_t>(k)); };
    const auto highAt = [&](Index k) { return highColumns.column(static_cast<std::uint64_t>(k)); };

    SignalAnalysis columns(ends, bank, in.rows);
    RowPolls rowPolls(poll, in.rows, rows.count());
    Row row;
    Index next = rows.begin();
    for (Index col = 0; col < count; ++col) {
        if (poll()) return Code::Interrupted;
        double* line = lineAt(col);
        columns.run(in.column(static_cast<std::uint64_t>(col)), line + down.low.start,
                    line + down.high.start);
        const bool allThere = col == count - 1;
        if (ring.keepsAll(count) && !allThere) continue;
        for (; next < rows.end() && (allThere || 2 * next + rows.last() <= col); ++next) {
            if (rowPolls.beforePair()) return Code::Interrupted;
            rows.fillInner([&](Index d) { return lineAt(2 * next + rows.first() + d); }, row);
            kernels().sumPairs(row.terms, row.count, lowAt(next), highAt(next), in.rows);
        }
    }
    if (rowPolls.atEnd()) return Code::Interrupted;
    analyseEnds(rows, lineAt, lowAt, highAt, in.rows);
    if (inPlace) copyBlock(delayed, delayedPlace);
    return {};
}

namespace {

Reach reachOf(const SynthesisRows& rows, Index n) {
    Reach reach = {n};
    Row row;
    const auto note = [&](Channel, Index k) -> const double* {
        reach.include(n - 1 - k);
        return nullptr;
    };
    const auto noteRow = [&](Index q) { rows.fill(q, note, row); };
    for (Index q = 0; q < rows.begin(); ++q) noteRow(q);
    for (Index q = rows.end(); q < rows.count(); ++q) noteRow(q);
    for (Index q = floorHalf(rows.before().first); q < 0; ++q) noteRow(q);
    for (Index p = rows.after().first; p <= rows.after().last; ++p) noteRow(floorHalf(p));
    for (Index k = 0; k < rows.edgeFilters().rows; ++k) {
        reach.include(k);
        reach.include(n - 1 - k);
    }
    return reach;
}

}  // namespace

// From the last column to the first: pair q of the output overwrites columns 2q and 2q + 1, behind which
// the smooth part has been read by then.
Failure mergeImage(const BoundaryTreatment& boundary, const FilterBank& bank, const Block& in,
                   const Block& smooth, const Block& out, const Swaps& swaps, const Poll& poll,
                   Workspace& workspace) {
    const Ends& ends = *boundary.ends;
    if (in.rows < ends.shortest(bank) || in.cols < ends.shortest(bank)) return Code::InvalidLevel;
    const SynthesisRows rows(ends.synthesis(bank, in.cols), in.cols);
    const Parts down(in.rows, swaps.inColumns);
    const Parts along(in.cols, swaps.inRows);

    const Index count = rows.coefficients(Channel::Low);
    const Reach reach = reachOf(rows, count);
    const bool streams = rows.nearest() <= 0 && rows.farthest() >= 0;
    const Ring ring(count, streams ? reach.front : count,
                    std::max(rows.farthest() - rows.nearest() + 1, reach.back));
    const std::uint64_t lineLength = Ring::paddedLength(in.rows);
    const bool inPlace = in.origin == out.origin;
    const Segment& second = swaps.inRows ? along.low : along.high;
    const std::uint64_t savedRoom = inPlace ? second.length * lineLength : 0;
    double* memory = workspace.room((2 * ring.lines() + 2) * lineLength + savedRoom);
    if (memory == nullptr) return Code::OutOfMemory;
    const auto lineAt = [&](Channel channel, Index k) {
        const auto place = static_cast<std::uint64_t>(ring.place(count - 1 - k));
        return memory + (channel == Channel::Low ? place : ring.lines() + place) * lineLength;
    };
    double* scratch = memory + 2 * ring.lines() * lineLength;

    Block lowColumns = columnsOf(in, along.low);
    Block highColumns = columnsOf(in, along.high);
    Block smoothColumns = smooth;
    if (inPlace) {
        Block& saved = swaps.inRows ? lowColumns : highColumns;
        const Block buffer = {scratch + 2 * lineLength, static_cast<std::ptrdiff_t>(lineLength), saved.rows,
                              saved.cols};
        copyBlock(saved, buffer);
        saved = buffer;
        if (swaps.inRows) smoothColumns = partOf(buffer, {down.low, {0, buffer.cols}});
    }
    const auto sampleAt = [&](Index p) { return out.column(static_cast<std::uint64_t>(p)); };
    SignalSynthesis columnSteps(ends, bank, in.rows);
    const auto makeLine = [&](Channel channel, Index k) {
        const auto col = static_cast<std::uint64_t>(k);
        const Block& columns = channel == Channel::Low ? lowColumns : highColumns;
        const double* lowPart =
            channel == Channel::Low ? smoothColumns.column(col) : columns.column(col) + down.low.start;
        columnSteps.run(lowPart, columns.column(col) + down.high.start, lineAt(channel, k));
    };

    RowPolls rowPolls(poll, in.rows, rows.count());
    Row row;
    Index next = rows.end() - 1;
    for (Index k = count - 1; k >= 0; --k) {
        if (poll()) return Code::Interrupted;
        makeLine(Channel::Low, k);
        if (k < rows.coefficients(Channel::High)) {
            if (poll()) return Code::Interrupted;
            makeLine(Channel::High, k);
        }
        const bool allThere = k == 0;
        if (ring.keepsAll(count) && !allThere) continue;
        for (; next >= rows.begin() && (allThere || next - rows.farthest() >= k); --next) {
            if (rowPolls.beforePair()) return Code::Interrupted;
            rows.fill(next, lineAt, row);
            kernels().sumPairs(row.terms, row.count, sampleAt(2 * next), sampleAt(2 * next + 1), in.rows);
        }
    }
    if (rowPolls.atEnd()) return Code::Interrupted;
    SynthesisOfEnds(rows, lineAt, sampleAt, in.rows, scratch).run();
    return {};
}

Failure periodic_analysis_step_2d(const FilterBank& bank, const Block& in, const Block& out,
                                  const Swaps& swaps, Workspace& workspace) {
    return splitImage(periodicBoundary, bank, in, out, swaps, {}, workspace);
}

}  // namespace undula
