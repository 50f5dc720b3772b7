// The steps against plain loops, bit for bit.
#include "dwt/steps.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <random>

#include "dwt/separable.h"
#include "support/plain_steps.h"

using namespace undula;
using plain::Signal;

namespace {

// A bank of random filters, and boundary rows for it.
struct RandomBank : FilterBank {
    std::vector<Signal> storage;
    std::vector<std::vector<const double*>> rows;

    RandomBank(int tapsA, int tapsS, int a, int b, int s, int g, unsigned seed) : random(seed) {
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
        BLlo = edge();
        BLhi = edge();
        BRlo = edge();
        BRhi = edge();
    }

 private:
    std::mt19937 random;

    const double* filter(int taps) {
        std::uniform_real_distribution<double> tap(-1.0, 1.0);
        Signal values(static_cast<std::size_t>(taps));
        for (double& value : values) value = tap(random);
        storage.push_back(std::move(values));
        return storage.back().data();
    }
    EdgeRows edge() {
        std::vector<const double*> table;
        for (int i = 0; i < La / 2; ++i) table.push_back(filter(La / 2 + 1 + 2 * i));
        rows.push_back(std::move(table));
        return rows.back().data();
    }
};

Signal randomSignal(std::size_t n, unsigned seed) {
    std::mt19937 random(seed);
    std::normal_distribution<double> value;
    Signal x(n);
    for (double& v : x) v = value(random);
    return x;
}

void expectSameBits(const Signal& actual, const Signal& expected, const std::string& where) {
    ASSERT_EQ(actual.size(), expected.size()) << where;
    for (std::size_t i = 0; i < actual.size(); ++i) {
        ASSERT_EQ(std::memcmp(&actual[i], &expected[i], sizeof(double)), 0)
            << where << " at " << i << ": " << actual[i] << " for " << expected[i];
    }
}

using PlainStep = Signal (*)(const FilterBank&, const Signal&, bool);

Signal run(Step* step, const FilterBank& bank, Signal x, bool swap) {
    Workspace workspace;
    EXPECT_EQ(step(bank, {x.data()}, static_cast<std::uint32_t>(x.size()), swap, workspace), Code::None);
    return x;
}

// Five signals side by side, far apart in memory, among numbers that must stay.
void expectSideBySide(Step* step, PlainStep plainStep, const FilterBank& bank, std::size_t n, bool swap,
                      const std::string& where) {
    constexpr std::size_t count = 5;
    constexpr std::size_t stride = 9;
    Signal all(n * stride, 7.25);
    for (std::size_t s = 0; s < count; ++s) {
        const Signal x = randomSignal(n, static_cast<unsigned>(s));
        for (std::size_t p = 0; p < n; ++p) all[p * stride + s] = x[p];
    }
    Workspace workspace;
    ASSERT_EQ(step(bank, {all.data(), stride, count}, static_cast<std::uint32_t>(n), swap, workspace),
              Code::None);
    for (std::size_t s = 0; s < stride; ++s) {
        Signal column(n);
        for (std::size_t p = 0; p < n; ++p) column[p] = all[p * stride + s];
        const Signal expected =
            s < count ? plainStep(bank, randomSignal(n, static_cast<unsigned>(s)), swap) : Signal(n, 7.25);
        expectSameBits(column, expected, where + " beside " + std::to_string(s));
    }
}

void expectPlain(Step* step, PlainStep plainStep, const FilterBank& bank, std::size_t n) {
    for (const bool swap : {false, true}) {
        const std::string where = "n " + std::to_string(n) + " swap " + std::to_string(swap) + " taps " +
                                  std::to_string(bank.La) + ", " + std::to_string(bank.Lb) + " offset " +
                                  std::to_string(bank.oa);
        const Signal x = randomSignal(n, static_cast<unsigned>(n));
        expectSameBits(run(step, bank, x, swap), plainStep(bank, x, swap), where);
        expectSideBySide(step, plainStep, bank, n, swap, where);
    }
}

// Lengths around the blocks in which outputs are computed, and filters longer than the signal.
const std::size_t lengths[] = {2, 3, 4, 5, 7, 8, 15, 16, 31, 32, 33, 63, 64, 66, 130, 257, 514};

std::vector<std::unique_ptr<RandomBank>> banks() {
    std::vector<std::unique_ptr<RandomBank>> all;
    const int shapes[][6] = {{2, 2, 0, 0, 0, 0},     {4, 4, -1, -1, -1, -1},   {20, 20, -9, -9, -9, -9},
                             {5, 3, -2, 0, -1, -1},  {9, 3, -4, 0, -1, -3},    {40, 40, -19, -19, -19, -19},
                             {1, 1, 0, 0, 0, 0},     {6, 4, 7, -12, 3, 5},     {3, 8, -20, -30, -40, -25},
                             {7, 5, 11, 40, 23, 12}, {100, 99, -50, 2, 1, -49}};
    unsigned seed = 1;
    for (const auto& s : shapes)
        all.push_back(std::make_unique<RandomBank>(s[0], s[1], s[2], s[3], s[4], s[5], seed++));
    return all;
}

}  // namespace

TEST(Steps, PeriodicAndSymmetricEqualPlainLoops) {
    for (const auto& bank : banks()) {
        for (const std::size_t n : lengths) {
            expectPlain(periodic_analysis_step, plain::periodicAnalysis, *bank, n);
            expectPlain(periodic_synthesis_step, plain::periodicSynthesis, *bank, n);
            expectPlain(symmetric_analysis_step, plain::symmetricAnalysis, *bank, n);
            expectPlain(symmetric_synthesis_step, plain::symmetricSynthesis, *bank, n);
            if (HasFatalFailure()) return;
        }
    }
}

TEST(Steps, IntervalEqualsPlainLoops) {
    for (const int taps : {2, 4, 6, 8, 12, 16}) {
        const int offset = 1 - taps / 2;
        const RandomBank bank(taps, taps, offset, offset, offset, offset, static_cast<unsigned>(taps));
        for (const int n : {2, 4, 8, 10, 12, 14, 16, 24, 32, 34, 66, 128, 258}) {
            if (n / 2 < taps) continue;
            const auto length = static_cast<std::size_t>(n);
            expectPlain(interval_analysis_step, plain::intervalAnalysis, bank, length);
            expectPlain(interval_synthesis_step, plain::intervalSynthesis, bank, length);
            if (HasFatalFailure()) return;
        }
    }
}

TEST(Steps, RefuseWhatIsTooShortAndLeaveIt) {
    const RandomBank bank(4, 4, -1, -1, -1, -1, 3);
    Workspace workspace;
    for (Step* step : {periodic_analysis_step, periodic_synthesis_step, symmetric_analysis_step,
                       symmetric_synthesis_step}) {
        double x = 2.5;
        EXPECT_EQ(step(bank, {&x}, 1, false, workspace), Code::InvalidLevel);
        EXPECT_EQ(step(bank, {&x}, 0, false, workspace), Code::InvalidLevel);
        EXPECT_EQ(x, 2.5);
    }
    for (Step* step : {interval_analysis_step, interval_synthesis_step}) {
        Signal x = randomSignal(6, 1);
        EXPECT_EQ(step(bank, {x.data()}, 6, false, workspace), Code::InvalidLevel);
        EXPECT_EQ(x, randomSignal(6, 1));
    }
}

// An offset is a number that a user writes: the step's memory must not follow it.
TEST(Steps, FarOffsetsWrapWithoutFarMemory) {
    constexpr int far = 1 << 24;
    const Signal x = randomSignal(8, 5);
    for (const int sign : {-1, 1}) {
        const RandomBank bank(4, 6, sign * far, 3, -sign * far, sign * far, 9);
        expectSameBits(run(periodic_analysis_step, bank, x, false), plain::periodicAnalysis(bank, x, false),
                       "far");
        const Signal merged = run(periodic_synthesis_step, bank, x, false);
        const Signal expected = plain::periodicSynthesis(bank, x, false);
        for (std::size_t i = 0; i < x.size(); ++i) EXPECT_NEAR(merged[i], expected[i], 1e-14);
    }
}

TEST(Steps, NumbersThatAreNoneStayWhereTheFilterMeetsThem) {
    const RandomBank bank(4, 4, -1, -1, -1, -1, 4);
    Signal x(64, 1.0);
    x[20] = std::numeric_limits<double>::quiet_NaN();
    const Signal y = run(periodic_analysis_step, bank, x, false);
    for (std::size_t k = 0; k < 32; ++k) EXPECT_EQ(std::isnan(y[k]), 2 * k - 1 <= 20 && 20 <= 2 * k + 2) << k;
}

TEST(Steps, BlockOfAnImageLeavesTheRestAlone) {
    const RandomBank bank(6, 4, -2, -1, -2, -1, 11);
    constexpr std::size_t rows = 50;
    constexpr std::size_t cols = 30;
    const Signal image = randomSignal(rows * cols, 2);
    const Block block = {nullptr, rows, 40, 22};
    Signal actual = image;
    Workspace workspace;
    Block inside = block;
    inside.origin = actual.data() + 3 * rows + 5;
    ASSERT_EQ(periodic_analysis_step_2d(bank, inside, true, false, workspace), Code::None);

    Signal expected = image;
    const auto at = [&](std::size_t r, std::size_t c) -> double& { return expected[(3 + c) * rows + 5 + r]; };
    for (std::size_t c = 0; c < block.cols; ++c) {
        Signal column(block.rows);
        for (std::size_t r = 0; r < block.rows; ++r) column[r] = at(r, c);
        column = plain::periodicAnalysis(bank, column, true);
        for (std::size_t r = 0; r < block.rows; ++r) at(r, c) = column[r];
    }
    for (std::size_t r = 0; r < block.rows; ++r) {
        Signal row(block.cols);
        for (std::size_t c = 0; c < block.cols; ++c) row[c] = at(r, c);
        row = plain::periodicAnalysis(bank, row, false);
        for (std::size_t c = 0; c < block.cols; ++c) at(r, c) = row[c];
    }
    expectSameBits(actual, expected, "block");
    EXPECT_EQ(periodic_analysis_step_2d(bank, {nullptr, 1, 1, 8}, false, false, workspace),
              Code::InvalidLevel);
    EXPECT_EQ(periodic_analysis_step_2d(bank, {nullptr, 8, 8, 1}, false, false, workspace),
              Code::InvalidLevel);
}
