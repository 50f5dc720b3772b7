#include "support/filter_pair.h"

#include <functional>

namespace {

std::size_t wrapped(long p, std::size_t n) {
    const long period = static_cast<long>(n);
    return static_cast<std::size_t>(((p % period) + period) % period);
}

// The high-pass filter that goes with the other channel's low-pass filter: g[i] = +-f[N - 1 - i],
// where the signs alternate, and are - for the even i when N / 2 is even, for the odd i otherwise.
struct HighPass {
    Numbers taps;
    int offset;

    HighPass(const Numbers& low, int lowOffset, bool flip)
        : taps(low.rbegin(), low.rend()), offset(2 - lowOffset - static_cast<int>(low.size())) {
        for (std::size_t i = 0; i < taps.size(); ++i) {
            const bool negative = (i % 2 == 0) == (low.size() / 2 % 2 == 0);
            if (negative != flip) taps[i] = -taps[i];
        }
    }
};

Numbers analysed(const FilterPair& pair, const Numbers& x) {
    const HighPass high(pair.synthesis, pair.synthesisOffset, pair.flipAnalysis);
    const std::size_t n = x.size();
    Numbers y(n);
    for (std::size_t k = 0; k < n / 2; ++k) {
        const long start = 2 * static_cast<long>(k);
        for (std::size_t j = 0; j < pair.analysis.size(); ++j) {
            y[k] += pair.analysis[j] * x[wrapped(start + pair.analysisOffset + static_cast<long>(j), n)];
        }
        for (std::size_t j = 0; j < high.taps.size(); ++j) {
            y[n / 2 + k] += high.taps[j] * x[wrapped(start + high.offset + static_cast<long>(j), n)];
        }
    }
    return y;
}

Numbers merged(const FilterPair& pair, const Numbers& y) {
    const HighPass high(pair.analysis, pair.analysisOffset, pair.flipSynthesis);
    const std::size_t n = y.size();
    Numbers x(n);
    for (std::size_t k = 0; k < n / 2; ++k) {
        const long start = 2 * static_cast<long>(k);
        for (std::size_t j = 0; j < pair.synthesis.size(); ++j) {
            x[wrapped(start + pair.synthesisOffset + static_cast<long>(j), n)] += y[k] * pair.synthesis[j];
        }
        for (std::size_t j = 0; j < high.taps.size(); ++j) {
            x[wrapped(start + high.offset + static_cast<long>(j), n)] += y[n / 2 + k] * high.taps[j];
        }
    }
    return x;
}

using Step = std::function<Numbers(const Numbers&)>;

// Replaces `count` values, `distance` apart.
void replace(Numbers& values, int first, int distance, int count, const Step& step) {
    Numbers line;
    for (int i = 0; i < count; ++i) line.push_back(values[static_cast<std::size_t>(first + i * distance)]);
    line = step(line);
    for (int i = 0; i < count; ++i)
        values[static_cast<std::size_t>(first + i * distance)] = line[static_cast<std::size_t>(i)];
}

void level(Numbers& values, int rows, int cols, int depth, const Step& step) {
    const int height = rows >> depth;
    const int width = cols == 1 ? 1 : cols >> depth;
    for (int c = 0; c < width; ++c) replace(values, c * rows, 1, height, step);
    if (cols == 1) return;
    for (int r = 0; r < height; ++r) replace(values, r, rows, width, step);
}

}  // namespace

Numbers transformed(const FilterPair& pair, Numbers values, int rows, int cols, int levels) {
    for (int depth = 0; depth < levels; ++depth) {
        level(values, rows, cols, depth, [&](const Numbers& x) { return analysed(pair, x); });
    }
    return values;
}

Numbers reconstructed(const FilterPair& pair, Numbers values, int rows, int cols, int levels) {
    for (int depth = levels - 1; depth >= 0; --depth) {
        level(values, rows, cols, depth, [&](const Numbers& y) { return merged(pair, y); });
    }
    return values;
}
