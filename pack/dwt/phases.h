// Samples split by the parity of their position, so that a filter, which moves by two samples an
// output, meets consecutive numbers.
#pragma once

#include "dwt/steps.h"
#include "frame/integers.h"

namespace undula {

using Index = std::int64_t;

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

void copyLine(const double* from, double* to, Index count);
void zeroLine(double* to, Index count);

// Positions `first` to `last` of signals side by side, `width` numbers a position.
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
    void read(const Lines& lines, Index n) const;
    // Writes `count` positions back, from an even one on.
    void write(const Lines& lines, Index start, Index count) const;

 private:
    static Index perPhase(Index first, Index last) { return floorHalf(last) - floorHalf(first) + 1; }

    Index lineWidth;
    Index firstPair;
    double* phases[2];
};

}  // namespace undula
