// The steps against plain loops, bit for bit.
#include "dwt/steps.h"

#include <gtest/gtest.h>

#include <cstring>
#include <list>
#include <random>

#include "dwt/separable.h"
#include "support/plain_steps.h"

using namespace undula;
using plain::Signal;

namespace {

// A bank of random filters, and boundary rows for it.
struct RandomBank : FilterBank {
    RandomBank(int tapsA, int tapsS, int a, int b, int s, int g, unsigned seed = 1) : random(seed) {
        La = tapsA;
        Lb = tapsS;
        oa = a;
        ob = b;
        os = s;
        og = g;
        ha = filter(tapsA);
        ga = filter(tapsS);
        hs = filter(tapsS);
        gs = filter(tapsA);
        for (EdgeRows* rows : {&BLlo, &BLhi, &BRlo, &BRhi}) *rows = edge();
    }

 private:
    std::mt19937 random;
    std::list<Signal> filters;
    std::list<std::vector<const double*>> edges;

    const double* filter(int taps) {
        std::uniform_real_distribution<double> tap(-1.0, 1.0);
        Signal& values = filters.emplace_back(static_cast<std::size_t>(taps));
        for (double& value : values) value = tap(random);
        return values.data();
    }
    EdgeRows edge() {
        auto& rows = edges.emplace_back();
        for (int i = 0; i < La / 2; ++i) rows.push_back(filter(La / 2 + 1 + 2 * i));
        return rows.data();
    }
};

Signal randomSignal(std::size_t n, std::size_t seed) {
    std::mt19937 random(static_cast<unsigned>(seed));
    std::normal_distribution<double> value;
    Signal x(n);
    for (double& v : x) v = value(random);
    return x;
}

void expectSameBits(const Signal& actual, const Signal& expected) {
    ASSERT_EQ(actual.size(), expected.size());
    for (std::size_t i = 0; i < actual.size(); ++i) {
        ASSERT_EQ(std::memcmp(&actual[i], &expected[i], sizeof(double)), 0)
            << "at " << i << ": " << actual[i] << " for " << expected[i];
    }
}

// Signals side by side, far apart in memory, among numbers that must stay.
void expectLines(Step* step, plain::Step* plainStep, const FilterBank& bank, std::size_t n, bool swap,
                 std::size_t count, std::size_t stride) {
    Signal all(n * stride, 7.25);
    for (std::size_t s = 0; s < count; ++s) {
        const Signal x = randomSignal(n, s);
        for (std::size_t p = 0; p < n; ++p) all[p * stride + s] = x[p];
    }
    const Lines lines = {all.data(), static_cast<std::ptrdiff_t>(stride), static_cast<std::ptrdiff_t>(count)};
    Workspace workspace;
    ASSERT_FALSE(step(bank, lines, static_cast<std::uint32_t>(n), swap, workspace));
    for (std::size_t s = 0; s < stride; ++s) {
        Signal line(n);
        for (std::size_t p = 0; p < n; ++p) line[p] = all[p * stride + s];
        expectSameBits(line, s < count ? plainStep(bank, randomSignal(n, s), swap) : Signal(n, 7.25));
    }
}

void expectPlain(Step* step, plain::Step* plainStep, const FilterBank& bank, std::size_t n) {
    for (const bool swap : {false, true}) {
        SCOPED_TRACE(testing::Message() << "n " << n << " swap " << swap << " taps " << bank.La << ", "
                                        << bank.Lb << " offset " << bank.oa);
        expectLines(step, plainStep, bank, n, swap, 1, 1);
        expectLines(step, plainStep, bank, n, swap, 5, 9);
    }
}

}  // namespace

// Lengths around the blocks in which outputs are computed, and filters longer than the signal.
TEST(Steps, PeriodicAndSymmetricEqualPlainLoops) {
    const std::size_t lengths[] = {2, 3, 4, 5, 7, 8, 15, 16, 31, 32, 33, 63, 64, 66, 130, 257, 514};
    const int shapes[][6] = {{2, 2, 0, 0, 0, 0},     {4, 4, -1, -1, -1, -1},   {20, 20, -9, -9, -9, -9},
                             {5, 3, -2, 0, -1, -1},  {9, 3, -4, 0, -1, -3},    {40, 40, -19, -19, -19, -19},
                             {1, 1, 0, 0, 0, 0},     {6, 4, 7, -12, 3, 5},     {3, 8, -20, -30, -40, -25},
                             {7, 5, 11, 40, 23, 12}, {100, 99, -50, 2, 1, -49}};
    for (const auto& s : shapes) {
        const RandomBank bank(s[0], s[1], s[2], s[3], s[4], s[5]);
        for (const std::size_t n : lengths) {
            expectPlain(periodic_analysis_step, plain::periodicAnalysis, bank, n);
            expectPlain(periodic_synthesis_step, plain::periodicSynthesis, bank, n);
            expectPlain(symmetric_analysis_step, plain::symmetricAnalysis, bank, n);
            expectPlain(symmetric_synthesis_step, plain::symmetricSynthesis, bank, n);
            if (HasFatalFailure()) return;
        }
    }
}

TEST(Steps, IntervalEqualsPlainLoops) {
    for (const int taps : {2, 4, 6, 8, 12, 16}) {
        const int offset = 1 - taps / 2;
        const RandomBank bank(taps, taps, offset, offset, offset, offset);
        for (const int n : {2, 4, 8, 10, 12, 14, 16, 24, 32, 34, 66, 128, 258}) {
            if (n / 2 < taps) continue;
            expectPlain(interval_analysis_step, plain::intervalAnalysis, bank, static_cast<std::size_t>(n));
            expectPlain(interval_synthesis_step, plain::intervalSynthesis, bank, static_cast<std::size_t>(n));
            if (HasFatalFailure()) return;
        }
    }
}

TEST(Steps, RefuseWhatIsTooShortWithoutLookingAtIt) {
    const RandomBank bank(4, 4, -1, -1, -1, -1);
    Workspace workspace;
    const auto expectRefusal = [&](Step* step, std::uint32_t n) {
        EXPECT_EQ(step(bank, {nullptr}, n, false, workspace).code, Code::InvalidLevel);
    };
    for (Step* step : {periodic_analysis_step, periodic_synthesis_step, symmetric_analysis_step,
                       symmetric_synthesis_step}) {
        expectRefusal(step, 1);
        expectRefusal(step, 0);
    }
    expectRefusal(interval_analysis_step, 6);
    expectRefusal(interval_synthesis_step, 6);
    for (const Block& block : {Block{nullptr, 1, 1, 8}, Block{nullptr, 8, 8, 1}})
        EXPECT_EQ(periodic_analysis_step_2d(bank, block, false, false, workspace).code, Code::InvalidLevel);
}

TEST(Steps, BlockOfAnImageLeavesTheRestAlone) {
    const RandomBank bank(6, 4, -2, -1, -2, -1, 11);
    constexpr std::size_t rows = 50;
    constexpr std::size_t height = 40;
    constexpr std::size_t width = 22;
    const Signal image = randomSignal(rows * 30, 2);
    Signal actual = image;
    Workspace workspace;
    const Block inside = {actual.data() + 3 * rows + 5, rows, height, width};
    ASSERT_FALSE(periodic_analysis_step_2d(bank, inside, true, false, workspace));

    Signal expected = image;
    double* origin = expected.data() + 3 * rows + 5;
    for (std::size_t c = 0; c < width; ++c)
        ASSERT_FALSE(periodic_analysis_step(bank, {origin + c * rows}, height, true, workspace));
    ASSERT_FALSE(periodic_analysis_step(bank, {origin, rows, height}, width, false, workspace));
    expectSameBits(actual, expected);
}
