// The two halves of a filter bank over phases: filtering with every second output, and merging.
#pragma once

#include "dwt/extension.h"
#include "dwt/phases.h"
#include "dwt/weighted_sum.h"

namespace undula {

// The largest number of terms that meet at one output: all taps of one filter in an analysis, every
// second tap of both in a synthesis.
inline constexpr int mostTerms = mostTaps + 2;

// Outputs `first` .. `first + count - 1` of a filter, placed from `start` on. `scratch` has room
// for them.
void filterLines(const Filter& filter, const Phases& signal, Index first, Index count, const Lines& lines,
                 Index start, double* scratch);

// Coefficient lines with zeros before and after them, so that every output can meet every tap.
struct Padded {
    double* origin;  // of coefficient 0
    Index width;

    double* at(Index k) const { return origin + k * width; }
};

// Reads the coefficients of a channel, extended to one period, with zeros from `first` and up to `last`.
Padded readCoefficients(double* memory, Index first, Index last, const Lines& lines, Index start,
                        const CoefficientExtension& extension);

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
    void sum(Sum* weighted, const Phases& out, Index from, Index to) const;

    // Merges positions `from` .. `to` into the lines; `from` is even. `scratch` has blockRoom doubles.
    void mergeLines(const Lines& lines, Index from, Index to, double* scratch) const;
    static std::uint64_t blockRoom(Index width);

 private:
    struct Shifts {
        Index nearest;
        Index farthest;
    };

    static Shifts shiftsOf(const Channels& channels) {
        return {ceilHalf(channels.first() - Index{1}), floorHalf(channels.last())};
    }

    int termsAt(Index position, Term* terms) const;

    Channels channels;
    Padded low;
    Padded high;
    Shifts shifts;
};

}  // namespace undula
