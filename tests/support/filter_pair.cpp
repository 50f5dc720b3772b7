#include "support/filter_pair.h"

namespace {

// The high-pass filter that goes with the other channel's low-pass filter: g[i] = +-f[N - 1 - i],
// where the signs alternate, and are - for the even i when N / 2 is even, for the odd i otherwise.
Numbers highPass(const Numbers& low, bool flip) {
    Numbers taps(low.rbegin(), low.rend());
    for (std::size_t i = 0; i < taps.size(); ++i) {
        const bool negative = (i % 2 == 0) == (low.size() / 2 % 2 == 0);
        if (negative != flip) taps[i] = -taps[i];
    }
    return taps;
}

int highPassOffset(const Numbers& low, int lowOffset) {
    return 2 - lowOffset - static_cast<int>(low.size());
}

// Replaces `count` values, `distance` apart.
void replace(Numbers& values, int first, int distance, int count, plain::Step* step,
             const undula::FilterBank& bank) {
    const auto at = [&](int i) -> double& { return values[static_cast<std::size_t>(first + i * distance)]; };
    Numbers line;
    for (int i = 0; i < count; ++i) line.push_back(at(i));
    line = step(bank, line, false);
    for (int i = 0; i < count; ++i) at(i) = line[static_cast<std::size_t>(i)];
}

int halved(int n, int times) {
    for (; times > 0; --times) n = (n + 1) / 2;
    return n;
}

}  // namespace

Numbers transformed(plain::Step* step, Direction direction, const FilterPair& pair, Numbers values, int rows,
                    int cols, int levels) {
    const Numbers analysisHigh = highPass(pair.synthesis, pair.flipAnalysis);
    const Numbers synthesisHigh = highPass(pair.analysis, pair.flipSynthesis);
    undula::FilterBank bank;
    bank.ha = pair.analysis.data();
    bank.hs = pair.synthesis.data();
    bank.ga = analysisHigh.data();
    bank.gs = synthesisHigh.data();
    bank.La = static_cast<std::int32_t>(pair.analysis.size());
    bank.Lb = static_cast<std::int32_t>(pair.synthesis.size());
    bank.oa = pair.analysisOffset;
    bank.os = pair.synthesisOffset;
    bank.ob = highPassOffset(pair.synthesis, pair.synthesisOffset);
    bank.og = highPassOffset(pair.analysis, pair.analysisOffset);

    for (int i = 0; i < levels; ++i) {
        const int depth = direction == Direction::analysis ? i : levels - 1 - i;
        const int height = halved(rows, depth);
        const int width = cols == 1 ? 1 : halved(cols, depth);
        for (int c = 0; c < width; ++c) replace(values, c * rows, 1, height, step, bank);
        for (int r = 0; cols > 1 && r < height; ++r) replace(values, r, rows, width, step, bank);
    }
    return values;
}
