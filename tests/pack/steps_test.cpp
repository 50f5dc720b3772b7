// The steps against plain loops, bit for bit, for each instruction set.
#include "dwt/steps.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cfenv>
#include <cmath>
#include <cstring>
#include <limits>
#include <list>
#include <random>

#include "dwt/image_steps.h"
#include "dwt/kernels.h"
#include "dwt/multilevel.h"
#include "frame/integers.h"
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

// Numbers with zeros of both signs and subnormals among them, and, if asked for, infinities and NaN.
Signal randomSignal(std::size_t n, std::size_t seed, bool finite = true) {
    std::mt19937 random(static_cast<unsigned>(seed));
    std::normal_distribution<double> value;
    constexpr double inf = std::numeric_limits<double>::infinity();
    const double rare[] = {0.0, -0.0, 4e-310, -4e-320, inf, -inf, std::nan("")};
    Signal x(n);
    for (double& v : x) v = random() % 8 == 0 ? rare[random() % (finite ? 4 : 7)] : value(random);
    return x;
}

// Any NaN equals any NaN.
void expectSameBits(const Signal& actual, const Signal& expected) {
    ASSERT_EQ(actual.size(), expected.size());
    for (std::size_t i = 0; i < actual.size(); ++i) {
        if (std::isnan(actual[i]) && std::isnan(expected[i])) continue;
        ASSERT_EQ(std::memcmp(&actual[i], &expected[i], sizeof(double)), 0)
            << "at " << i << ": " << actual[i] << " for " << expected[i];
    }
}

// A treatment of the ends, and its plain loops.
struct Treatment {
    const BoundaryTreatment& boundary;
    plain::Step* analysis;
    plain::Step* synthesis;
};

const Treatment periodic = {periodicBoundary, plain::periodicAnalysis, plain::periodicSynthesis};
const Treatment symmetric = {symmetricBoundary, plain::symmetricAnalysis, plain::symmetricSynthesis};
const Treatment interval = {intervalBoundary, plain::intervalAnalysis, plain::intervalSynthesis};

void expectPlain(const Treatment& treatment, const FilterBank& bank, std::size_t n, bool finite = true) {
    SCOPED_TRACE(testing::Message() << kernels().name << ", n " << n << ", taps " << bank.La << " and "
                                    << bank.Lb << ", offsets " << bank.oa << " and " << bank.ob);
    const Signal x = randomSignal(n, n, finite);
    Signal behind(n + 1);  // where no vector of numbers is aligned
    std::copy(x.begin(), x.end(), behind.begin() + 1);
    const auto size = static_cast<std::uint32_t>(n);
    for (const bool swap : {false, true}) {
        const long low = plain::lowPlace(0, static_cast<long>(n), swap);
        const long high = plain::highPlace(0, static_cast<long>(n), swap);
        Signal out(n);
        const double* const first = behind.data() + 1;
        ASSERT_FALSE(treatment.boundary.analysis(bank, first, size, out.data() + low, out.data() + high));
        expectSameBits(out, treatment.analysis(bank, x, swap));
        ASSERT_FALSE(treatment.boundary.synthesis(bank, x.data() + low, x.data() + high, size, out.data()));
        expectSameBits(out, treatment.synthesis(bank, x, swap));
    }
}

// Runs the test with each instruction set that the machine has.
template <class Test>
void withAllKernels(Test test) {
    const std::string before = kernels().name;
    for (const Kernels* const* set = availableKernels(); *set != nullptr; ++set) {
        ASSERT_TRUE(useKernels((*set)->name));
        test();
    }
    useKernels(before.c_str());
}

// Offsets: of the analysis filters a and b, of the synthesis filters s and g.
const int shapes[][6] = {{2, 2, 0, 0, 0, 0},     {4, 4, -1, -1, -1, -1},    {20, 20, -9, -9, -9, -9},
                         {5, 3, -2, 0, -1, -1},  {9, 3, -4, 0, -1, -3},     {40, 40, -19, -19, -19, -19},
                         {1, 1, 0, 0, 0, 0},     {6, 4, 7, -12, 3, 5},      {3, 8, -20, -30, -40, -25},
                         {7, 5, 11, 40, 23, 12}, {100, 99, -50, 2, 1, -49}, {4, 6, 9, 900, -700, 3}};

}  // namespace

// Lengths around the blocks in which outputs are computed, and filters longer than the signal.
TEST(Steps, PeriodicAndSymmetricEqualPlainLoops) {
    withAllKernels([] {
        for (const auto& s : shapes) {
            const RandomBank bank(s[0], s[1], s[2], s[3], s[4], s[5]);
            for (std::size_t n = 2; n < 1200; n += n < 70 ? 1 : n / 8) {
                expectPlain(periodic, bank, n);
                expectPlain(symmetric, bank, n);
                if (HasFatalFailure()) return;
            }
        }
    });
}

TEST(Steps, InfinitiesAndNaNGoWhereThePlainLoopsTakeThem) {
    withAllKernels([] {
        for (const auto& s : shapes) {
            const RandomBank bank(s[0], s[1], s[2], s[3], s[4], s[5]);
            for (const std::size_t n : {7U, 64U, 700U}) {
                expectPlain(periodic, bank, n, false);
                expectPlain(symmetric, bank, n, false);
            }
        }
    });
}

TEST(Steps, IntervalEqualsPlainLoops) {
    withAllKernels([] {
        for (const int taps : {2, 4, 6, 8, 12, 16}) {
            const int offset = 1 - taps / 2;
            const RandomBank bank(taps, taps, offset, offset, offset, offset);
            for (int n = 2 * taps; n < 1200; n += n < 70 ? 2 : n / 16 * 2) {
                expectPlain(interval, bank, static_cast<std::size_t>(n));
                if (HasFatalFailure()) return;
            }
        }
    });
}

// Several levels of a long signal are split in one sweep.
TEST(Steps, SweepsEqualPlainLoopsLevelByLevel) {
    Workspace workspace;
    const auto expectLevels = [&](const Treatment& treatment, const FilterBank& bank, std::size_t n) {
        SCOPED_TRACE(testing::Message()
                     << "taps " << bank.La << " and " << bank.Lb << ", offset " << bank.oa);
        const std::uint32_t levels = 4;
        Signal x = randomSignal(n, n);
        Signal out(n);
        ASSERT_FALSE(transformLevels(treatment.boundary, bank, contiguous(x.data(), n, 1),
                                     contiguous(out.data(), n, 1), levels, Direction::Forward, {},
                                     workspace));
        for (std::uint32_t level = 0; level < levels; ++level) {
            Signal smooth(x.begin(), x.begin() + static_cast<std::ptrdiff_t>(halved(n, level)));
            const Signal analysed = treatment.analysis(bank, smooth, false);
            std::copy(analysed.begin(), analysed.end(), x.begin());
        }
        expectSameBits(out, x);
    };
    for (const auto& s : shapes) {
        const RandomBank bank(s[0], s[1], s[2], s[3], s[4], s[5]);
        expectLevels(periodic, bank, (1U << 19) + 5);
        expectLevels(symmetric, bank, (1U << 19) + 12);
    }
    const RandomBank even(16, 16, -7, -7, -7, -7);
    expectLevels(interval, even, 1U << 19);
}

// Nor what stands beside the data, nor what a vector holds beyond them.
TEST(Steps, RaiseNoFlagWithoutReason) {
    constexpr std::size_t guard = 64;
    constexpr int watched = FE_INVALID | FE_OVERFLOW | FE_DIVBYZERO;
    withAllKernels([] {
        for (const auto& s : shapes) {
            const RandomBank bank(s[0], s[1], s[2], s[3], s[4], s[5]);
            for (std::uint32_t n = 2; n < 150; ++n) {
                Signal x(n + 2 * guard, std::numeric_limits<double>::signaling_NaN());
                std::fill_n(x.begin() + guard, n, 1.5);
                Signal out(n);
                std::feclearexcept(FE_ALL_EXCEPT);
                const double* data = x.data() + guard;
                const std::uint32_t lows = n - n / 2;
                for (const Treatment& treatment : {periodic, symmetric}) {
                    ASSERT_FALSE(treatment.boundary.analysis(bank, data, n, out.data(), out.data() + lows));
                    ASSERT_FALSE(treatment.boundary.synthesis(bank, data, data + lows, n, out.data()));
                }
                ASSERT_EQ(std::fetestexcept(watched), 0)
                    << kernels().name << ", n " << n << ", taps " << s[0];
            }
        }
    });
}

TEST(Steps, RefuseWhatIsTooShortWithoutLookingAtIt) {
    const RandomBank bank(4, 4, -1, -1, -1, -1);
    const auto expectRefusal = [&](const BoundaryTreatment& boundary, std::uint32_t n) {
        EXPECT_EQ(boundary.analysis(bank, nullptr, n, nullptr, nullptr).code, Code::InvalidLevel);
        EXPECT_EQ(boundary.synthesis(bank, nullptr, nullptr, n, nullptr).code, Code::InvalidLevel);
    };
    expectRefusal(periodicBoundary, 1);
    expectRefusal(symmetricBoundary, 0);
    expectRefusal(intervalBoundary, 6);
    Workspace workspace;
    for (const Block& block : {Block{nullptr, 1, 1, 8}, Block{nullptr, 8, 8, 1}})
        EXPECT_EQ(periodic_analysis_step_2d(bank, block, block, {}, workspace).code, Code::InvalidLevel);
}

namespace {

// A block of a larger image, in place and into another image; all else stays as it is.
void expectPlainImage(const Treatment& treatment, const FilterBank& bank, std::uint32_t height,
                      std::uint32_t width, const Swaps& swaps) {
    SCOPED_TRACE(testing::Message() << kernels().name << ", " << height << " x " << width << ", taps "
                                    << bank.La << " and " << bank.Lb << ", swaps " << swaps.inColumns
                                    << swaps.inRows);
    const std::size_t rows = height + 9;
    const Signal image = randomSignal(rows * (width + 5), width);
    Workspace workspace;
    const auto inside = [&](Signal& pixels) {
        return Block{pixels.data() + 3 * rows + 5, static_cast<std::ptrdiff_t>(rows), height, width};
    };
    for (const bool forward : {true, false}) {
        Signal expected = image;
        plain::stepImage(forward ? treatment.analysis : treatment.synthesis, bank, inside(expected).origin,
                         static_cast<long>(rows), height, width, swaps);
        for (const bool inPlace : {true, false}) {
            Signal from = image;
            Signal into = image;
            const Block in = inside(from);
            const Block out = inside(inPlace ? from : into);
            ASSERT_FALSE(forward ? splitImage(treatment.boundary, bank, in, out, swaps, {}, workspace)
                                 : mergeImage(treatment.boundary, bank, in, smoothPart(in, swaps), out, swaps,
                                              {}, workspace));
            expectSameBits(inPlace ? from : into, expected);
        }
    }
}

}  // namespace

TEST(Steps, ImagesEqualPlainLoops) {
    withAllKernels([] {
        const RandomBank even(8, 8, -3, -3, -3, -3);
        for (const auto& s : shapes) {
            const RandomBank bank(s[0], s[1], s[2], s[3], s[4], s[5]);
            for (const auto& [height, width] : {std::pair(2U, 3U), {5U, 4U}, {33U, 70U}, {20U, 161U}}) {
                for (const Swaps& swaps : {Swaps{false, false}, {true, false}, {false, true}, {true, true}}) {
                    expectPlainImage(periodic, bank, height, width, swaps);
                    expectPlainImage(symmetric, bank, height, width, swaps);
                    expectPlainImage(interval, even, 2 * height + 14, 2 * width + 12, swaps);
                    if (HasFatalFailure()) return;
                }
            }
        }
    });
}
