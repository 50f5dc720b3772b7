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

Block columnsOf(const Block& image, const Segment& columns) {
    return partOf(image, {{0, image.rows}, columns});
}

Reach reachOf(const AnalysisRows& rows) {
    Reach reach = {rows.samples()};
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
    const Reach reach = reachOf(rows);
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
    SpreadPolls rowPolls(poll, in.rows, static_cast<std::uint64_t>(rows.count()));
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
            if (rowPolls.beforeStep()) return Code::Interrupted;
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
    for (Index p = rows.before().first; p <= rows.before().last; ++p) noteRow(rows.pairOf(p));
    for (Index p = rows.after().first; p <= rows.after().last; ++p) noteRow(rows.pairOf(p));
    for (Index k = 0; k < rows.edgeFilters().rows; ++k) {
        reach.include(k);
        reach.include(n - 1 - k);
    }
    return reach;
}

// From the last column to the first: a pair of output columns overwrites some behind which the smooth
// part has been read by then.
class ImageMerge {
 public:
    ImageMerge(const BoundaryTreatment& boundary, const FilterBank& bank, const Block& coefficients,
               const Block& smooth, const Block& image, const Swaps& swaps)
        : in(coefficients),
          out(image),
          inRowsSwapped(swaps.inRows),
          down(in.rows, swaps.inColumns),
          lowColumns(columnsOf(in, Parts(in.cols, swaps.inRows).low)),
          highColumns(columnsOf(in, Parts(in.cols, swaps.inRows).high)),
          smoothColumns(smooth),
          rows(boundary.ends->synthesis(bank, in.cols), in.cols),
          columnSteps(*boundary.ends, bank, in.rows),
          count(rows.coefficients(Channel::Low)),
          ring(ringOf(rows, count)),
          lineLength(Ring::paddedLength(in.rows)) {}

    Failure run(const Poll& poll, Workspace& workspace) {
        if (!prepare(workspace)) return Code::OutOfMemory;
        const auto at = [this](Channel channel, Index k) { return lineAt(channel, k); };
        const auto sampleAt = [this](Index p) { return out.column(static_cast<std::uint64_t>(p)); };
        SpreadPolls rowPolls(poll, in.rows, static_cast<std::uint64_t>(rows.count()));
        Row row;
        Index next = rows.end() - 1;
        for (Index k = count - 1; k >= 0; --k) {
            if (!makeLines(k, poll)) return Code::Interrupted;
            const Index ready = k == 0 ? 0 : ring.keepsAll(count) ? next + 1 : k + rows.farthest();
            for (; next >= std::max(rows.begin(), ready); --next) {
                if (rowPolls.beforeStep()) return Code::Interrupted;
                const Index p = rows.position(next);
                rows.fill(next, at, row);
                kernels().sumPairs(row.terms, row.count, sampleAt(p), sampleAt(p + 1), in.rows);
            }
        }
        if (rowPolls.atEnd()) return Code::Interrupted;
        SynthesisOfEnds(rows, at, sampleAt, in.rows, scratch).run();
        return {};
    }

 private:
    static Ring ringOf(const SynthesisRows& rows, Index count) {
        const Reach reach = reachOf(rows, count);
        const bool streams = rows.nearest() <= 0 && rows.farthest() >= 0;
        return {count, streams ? reach.front : count,
                std::max(rows.farthest() - rows.nearest() + 1, reach.back)};
    }

    // False without memory. In place, what stands second is saved from being overwritten.
    bool prepare(Workspace& workspace) {
        Block& second = inRowsSwapped ? lowColumns : highColumns;
        const bool inPlace = in.origin == out.origin;
        const std::uint64_t savedRoom = inPlace ? second.cols * lineLength : 0;
        memory = workspace.room((2 * ring.lines() + 2) * lineLength + savedRoom);
        if (memory == nullptr) return false;
        scratch = memory + 2 * ring.lines() * lineLength;
        if (!inPlace) return true;
        const Block saved = {scratch + 2 * lineLength, static_cast<std::ptrdiff_t>(lineLength), second.rows,
                             second.cols};
        copyBlock(second, saved);
        second = saved;
        if (inRowsSwapped) smoothColumns = partOf(saved, {down.low, {0, saved.cols}});
        return true;
    }

    double* lineAt(Channel channel, Index k) const {
        const auto place = static_cast<std::uint64_t>(ring.place(count - 1 - k));
        return memory + (channel == Channel::Low ? place : ring.lines() + place) * lineLength;
    }

    // The columns of both channels; false when the user wants to stop.
    bool makeLines(Index k, const Poll& poll) {
        const auto col = static_cast<std::uint64_t>(k);
        if (poll()) return false;
        columnSteps.run(smoothColumns.column(col), lowColumns.column(col) + down.high.start,
                        lineAt(Channel::Low, k));
        if (k >= rows.coefficients(Channel::High)) return true;
        if (poll()) return false;
        const double* column = highColumns.column(col);
        columnSteps.run(column + down.low.start, column + down.high.start, lineAt(Channel::High, k));
        return true;
    }

    const Block& in;
    const Block& out;
    bool inRowsSwapped;
    Parts down;
    Block lowColumns;
    Block highColumns;
    Block smoothColumns;
    SynthesisRows rows;
    SignalSynthesis columnSteps;
    Index count;
    Ring ring;
    std::uint64_t lineLength;
    double* memory = nullptr;
    double* scratch = nullptr;
};

}  // namespace

Failure mergeImage(const BoundaryTreatment& boundary, const FilterBank& bank, const Block& in,
                   const Block& smooth, const Block& out, const Swaps& swaps, const Poll& poll,
                   Workspace& workspace) {
    const std::uint32_t shortest = boundary.ends->shortest(bank);
    if (in.rows < shortest || in.cols < shortest) return Code::InvalidLevel;
    return ImageMerge(boundary, bank, in, smooth, out, swaps).run(poll, workspace);
}

Failure periodic_analysis_step_2d(const FilterBank& bank, const Block& in, const Block& out,
                                  const Swaps& swaps, Workspace& workspace) {
    return splitImage(periodicBoundary, bank, in, out, swaps, {}, workspace);
}

}  // namespace undula
