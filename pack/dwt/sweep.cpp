#include "dwt/sweep.h"

#include <optional>

#include "dwt/signal_steps.h"

namespace undula {

namespace {

constexpr std::uint32_t mostLevels = 4;
// Fewer samples stay in the cache from level to level.
constexpr Index leastSamples = Index{1} << 17;
// Samples of the signal that are worked on at once.
constexpr Index chunk = 16384;
// The farthest from the origin that taps may lie.
constexpr Index farthestTap = SignalAnalysis::widestRow / 2;
// Enough for the samples that a level keeps at either side, with those that the ends add at last.
constexpr Index keptRoom = 8 * farthestTap;

// A level while its samples pass in order: the first ones stay, of the others a window holds the last.
struct Level {
    AnalysisRows rows;
    Index begin;  // the first row that is summed while samples pass
    Index next;   // the row to be summed next
    Index base;   // the sample at which the window starts
    Index there;  // one behind the last sample that has come
    const double* window = nullptr;
    double* first = nullptr;
    double* high = nullptr;

    // Samples before `windowStart` come at the end of the sweep.
    Level(const Ends& ends, const FilterBank& bank, Index n, Index windowStart)
        : rows(ends.analysis(bank, n), n),
          begin(std::max(rows.begin(), ceilHalf(windowStart - rows.first()))),
          next(begin),
          base(windowStart),
          there(windowStart) {}

    // The samples that stay: all that the rows before `begin` meet, and the rows at the other end.
    Index front() const { return 2 * begin + rows.last() + 1; }
    Index endOfReady() const { return std::min(rows.end(), floorHalf(there - 1 - rows.last()) + 1); }
    Index firstOfNext() const { return 2 * next + rows.first(); }
    const double* at(Index p) const { return p < front() ? first + p : window + (p - base); }
};

class Sweep {
 public:
    Sweep(const Ends& ends, const FilterBank& bank, const double* samples, Index n, std::uint32_t levelCount,
          double* lastLow, double* result, double* room)
        : inner(ends, bank, n), count(levelCount), low(lastLow) {
        Index windowStart = 0;
        for (std::uint32_t j = 0; j < count; ++j) {
            Level& level = levels[j].emplace(ends, bank, n, windowStart);
            level.first = room;
            windows[j] = room + keptRoom;
            level.window = j == 0 ? samples : windows[j];
            room = windows[j] + keptRoom + (chunk >> j);
            n = ceilHalf(n);
            level.high = result + n;
            windowStart = level.begin;
        }
    }

    void run() {
        const Index n = levels[0]->rows.samples();
        for (Index there = std::min(chunk, n);; there = std::min(there + chunk, n)) {
            receive(0, there - levels[0]->there);
            advance(0);
            if (there == n) break;
        }
        for (std::uint32_t j = 0; j < count; ++j) finish(j);
    }

 private:
    bool isLast(std::uint32_t j) const { return j + 1 == count; }

    // Where a level's low-pass coefficient goes.
    double* lowAt(std::uint32_t j, Index k) {
        if (isLast(j)) return low + k;
        const Level& next = *levels[j + 1];
        return k < next.base ? next.first + k : windows[j + 1] + (k - next.base);
    }

    void receive(std::uint32_t j, Index samples) {
        Level& level = *levels[j];
        for (Index p = level.there; p < std::min(level.there + samples, level.front()); ++p)
            level.first[p] = level.window[p - level.base];
        level.there += samples;
    }

    // Sums the rows whose samples have come, and those of the levels behind.
    void advance(std::uint32_t j) {
        Level& level = *levels[j];
        const Index rows = level.endOfReady() - level.next;
        if (rows <= 0) return;
        inner.runInner(level.window + (level.firstOfNext() - level.base), rows, lowAt(j, level.next),
                       level.high + level.next);
        level.next += rows;
        if (j > 0) forget(j);
        if (isLast(j)) return;
        receive(j + 1, rows);
        advance(j + 1);
    }

    // Samples of the window that no row meets from now on make room. The rows at the ends meet none of them.
    void forget(std::uint32_t j) {
        Level& level = *levels[j];
        const Index kept = std::min(level.firstOfNext(), level.there);
        if (kept <= level.base) return;
        std::copy(windows[j] + (kept - level.base), windows[j] + (level.there - level.base), windows[j]);
        level.base = kept;
    }

    // The rows near the ends, when the samples at both are there.
    void finish(std::uint32_t j) {
        advance(j);
        Level& level = *levels[j];
        const auto run = [&](Index k) {
            const auto sampleAt = [&](Index p) { return level.at(p); };
            analyseRow(level.rows, k, sampleAt, lowAt(j, k), level.high + k, 1);
        };
        for (Index k = 0; k < level.begin; ++k) run(k);
        for (Index k = level.rows.end(); k < level.rows.count(); ++k) run(k);
        if (!isLast(j)) receive(j + 1, level.rows.count() - level.rows.end());
    }

    SignalAnalysis inner;
    std::optional<Level> levels[mostLevels];
    double* windows[mostLevels];
    std::uint32_t count;
    double* low;
};

}  // namespace

std::uint32_t sweptLevels(const Ends& ends, const FilterBank& bank, Index n, std::uint32_t levels) {
    const Channels channels = ends.analysis(bank, n).channels;
    if (channels.first() < -farthestTap || channels.first() > 0) return 0;
    if (channels.last() >= farthestTap || channels.last() < 0) return 0;
    std::uint32_t count = 0;
    for (; count < std::min(levels, mostLevels) && n >= leastSamples; ++count) n = ceilHalf(n);
    return count < 2 ? 0 : count;
}

std::uint64_t sweepRoom() {
    return 2 * mostLevels * keptRoom + 2 * chunk;
}

void sweep(const Ends& ends, const FilterBank& bank, const double* samples, Index n, std::uint32_t levels,
           double* low, double* result, double* room) {
    Sweep(ends, bank, samples, n, levels, low, result, room).run();
}

}  // namespace undula
