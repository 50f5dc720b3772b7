#include "cosine/folding.h"

#include <algorithm>

namespace undula {

namespace {

using Index = std::ptrdiff_t;

double* line(const Lines& lines, Index position) {
    return lines.origin + position * lines.stride;
}

bool isSingle(const Lines& lines) {
    return lines.count == 1 && lines.stride == 1;
}

// A sample near an end of a segment, and the one at its mirror image beyond that end.
struct Mirrored {
    double& inside;
    double& mirror;
};

// Such samples of several lines, counted from the end on: `step` leads inwards, and outwards for the images,
// which lie all in the period or all in the neighbouring one.
struct Edge {
    double* inside;
    double* mirror;
    Index step;

    Mirrored at(Index k, Index line) const { return {inside[k * step + line], mirror[line - k * step]}; }
};

enum End : Index { First = 1, Last = -1 };

template <End end, bool single>
Edge edgeOf(const Lines& lines, Index period, const CosineSegment& segment) {
    const Index start = segment.start;
    const Index after = start + segment.length;
    const Index inside = end == First ? start : after - 1;
    const Index mirror = end == First ? (start == 0 ? period : start) - 1 : (after == period ? 0 : after);
    return {line(lines, inside), line(lines, mirror), end * (single ? 1 : lines.stride)};
}

// Calls combine(rising, falling, sample of `in`, sample of `out`) along an edge, with the sign of the mirror
// images in `falling`. Along a single line, with its strides known, samples can be worked on side by side.
template <End end, bool single, class Combine>
void alongEdge(const Lines& in, Index period, const CosineSegment& segment, const BellSamples& bell,
               const Lines& out, Combine combine) {
    const Edge from = edgeOf<end, single>(in, period, segment);
    const Edge to = edgeOf<end, single>(out, period, segment);
    const double* rising = bell.rising.data();
    const double* falling = bell.falling.data();
    const Index count = single ? 1 : in.count;
    for (Index k = 0; k < bell.halfLength; ++k) {
        const double r = rising[k];
        const double f = end == First ? falling[k] : -falling[k];
        for (Index i = 0; i < count; ++i) combine(r, f, from.at(k, i), to.at(k, i));
    }
}

template <class Combine>
void alongEdges(const Lines& in, Index period, const CosineSegment& segment, const BellSamples& bell,
                const Lines& out, Combine combine) {
    if (isSingle(in) && isSingle(out)) {
        alongEdge<First, true>(in, period, segment, bell, out, combine);
        alongEdge<Last, true>(in, period, segment, bell, out, combine);
    } else {
        alongEdge<First, false>(in, period, segment, bell, out, combine);
        alongEdge<Last, false>(in, period, segment, bell, out, combine);
    }
}

// Calls run(position, count) for runs of positions between the edges whose samples lie side by side: all
// of them in a single signal, one position of several.
template <class Run>
void betweenEdges(const Lines& lines, const CosineSegment& segment, const BellSamples& bell, Run run) {
    const Index first = segment.start + bell.halfLength;
    const Index end = segment.start + segment.length - bell.halfLength;
    if (first >= end) return;
    if (isSingle(lines)) {
        run(first, end - first);
    } else {
        for (Index position = first; position < end; ++position) run(position, lines.count);
    }
}

}  // namespace

void fold(const Lines& in, std::ptrdiff_t period, const CosineSegment& segment, const BellSamples& bell,
          const Lines& out) {
    alongEdges(in, period, segment, bell, out,
               [](double r, double f, Mirrored x, Mirrored y) { y.inside = r * x.inside + f * x.mirror; });
    betweenEdges(in, segment, bell, [&](Index position, Index count) {
        std::copy_n(line(in, position), count, line(out, position));
    });
}

void unfold(const Lines& in, std::ptrdiff_t period, const CosineSegment& segment, const BellSamples& bell,
            const Lines& out) {
    alongEdges(in, period, segment, bell, out, [](double r, double f, Mirrored x, Mirrored y) {
        y.inside += r * x.inside;
        y.mirror += f * x.inside;
    });
    betweenEdges(in, segment, bell, [&](Index position, Index count) {
        const double* from = line(in, position);
        double* to = line(out, position);
        for (Index i = 0; i < count; ++i) to[i] += from[i];
    });
}

}  // namespace undula
