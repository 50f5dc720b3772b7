#include "cosine/folding.h"

#include <algorithm>

namespace undula {

namespace {

using Index = std::ptrdiff_t;

double* line(const Lines& lines, Index position) {
    return lines.origin + position * lines.stride;
}

// A segment reaches at most one period beyond either end.
Index wrapped(Index position, Index period) {
    if (position < 0) return position + period;
    return position < period ? position : position - period;
}

// Calls run(position, count) for runs of positions from `first` up to `end` whose samples lie side by
// side: all of them in a single signal, one position of several.
template <class Run>
void forEachRun(const Lines& lines, Index first, Index end, Run run) {
    if (first >= end) return;
    if (lines.count == 1 && lines.stride == 1) {
        run(first, end - first);
    } else {
        for (Index position = first; position < end; ++position) run(position, lines.count);
    }
}

// out = a x + b y.
void combine(double a, const double* x, double b, const double* y, double* out, Index count) {
    for (Index i = 0; i < count; ++i) out[i] = a * x[i] + b * y[i];
}

// out += a x.
void accumulate(double a, const double* x, double* out, Index count) {
    for (Index i = 0; i < count; ++i) out[i] += a * x[i];
}

}  // namespace

void fold(const Lines& in, Index period, const CosineSegment& segment, const BellSamples& bell,
          const Lines& out) {
    const auto [a, length] = segment;
    const auto sample = [&](Index position) { return line(in, wrapped(position, period)); };
    for (Index k = 0; k < bell.halfLength; ++k) {
        const double r = bell.rising[static_cast<std::size_t>(k)];
        const double f = bell.falling[static_cast<std::size_t>(k)];
        combine(r, sample(a + k), f, sample(a - 1 - k), line(out, a + k), in.count);
        combine(r, sample(a + length - 1 - k), -f, sample(a + length + k), line(out, a + length - 1 - k),
                in.count);
    }
    forEachRun(in, a + bell.halfLength, a + length - bell.halfLength, [&](Index position, Index count) {
        std::copy_n(line(in, position), count, line(out, position));
    });
}

void unfold(const Lines& in, Index period, const CosineSegment& segment, const BellSamples& bell,
            const Lines& out) {
    const auto [a, length] = segment;
    const auto target = [&](Index position) { return line(out, wrapped(position, period)); };
    for (Index k = 0; k < bell.halfLength; ++k) {
        const double r = bell.rising[static_cast<std::size_t>(k)];
        const double f = bell.falling[static_cast<std::size_t>(k)];
        const double* first = line(in, a + k);
        const double* last = line(in, a + length - 1 - k);
        accumulate(r, first, target(a + k), in.count);
        accumulate(f, first, target(a - 1 - k), in.count);
        accumulate(r, last, target(a + length - 1 - k), in.count);
        accumulate(-f, last, target(a + length + k), in.count);
    }
    forEachRun(in, a + bell.halfLength, a + length - bell.halfLength, [&](Index position, Index count) {
        accumulate(1.0, line(in, position), line(out, position), count);
    });
}

}  // namespace undula
