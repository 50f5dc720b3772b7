// The spline families against their formulas, and the ordinary wavelet basis.
#include <cmath>
#include <numbers>
#include <numeric>

#include "support/error_cases.h"
#include "support/failing_new.h"
#include "support/robustness.h"
#include "support/spline_pairs.h"

using namespace std::complex_literals;

namespace {

constexpr double rootOfTwo = 1.4142135623730951;

double binomial(int n, int k) {
    double value = 1.0;
    for (int i = 1; i <= k; ++i) value = value * (n - k + i) / i;
    return value;
}

Numbers product(const Numbers& a, const Numbers& b) {
    Numbers result(a.size() + b.size() - 1);
    for (std::size_t i = 0; i < a.size(); ++i) {
        for (std::size_t j = 0; j < b.size(); ++j) result[i + j] += a[i] * b[j];
    }
    return result;
}

Numbers power(const Numbers& a, int exponent) {
    Numbers result = {1.0};
    for (int i = 0; i < exponent; ++i) result = product(result, a);
    return result;
}

// The dual filter of the orders: ((1 + z) / 2)^n times the sum over k < (m + n) / 2 of
// binomial(K - 1 + k, k) sin^(2k), where sin^2 is -(1 - z)^2 / (4 z). Every number is a binary
// fraction that a double holds exactly.
Numbers dualFilter(int m, int n) {
    const int terms = (m + n) / 2;
    Numbers sum(static_cast<std::size_t>(2 * terms - 1));
    for (int k = 0; k < terms; ++k) {
        const Numbers sine = power({-0.25, 0.5, -0.25}, k);
        for (std::size_t i = 0; i < sine.size(); ++i) {
            sum[static_cast<std::size_t>(terms - 1 - k) + i] += binomial(terms - 1 + k, k) * sine[i];
        }
    }
    return product(power({0.5, 0.5}, n), sum);
}

// The infinite filter of the orthonormal splines of a degree of at least 1, by its definition: the
// spline's transform is sin(w/2)^p / (w/2)^p, and S below is what its shifts have together.
class InfiniteSplineFilter {
 public:
    explicit InfiniteSplineFilter(int degree) : order_(degree + 1), response_(points / 2) {
        for (int i = 0; i < points / 2; ++i) response_[static_cast<std::size_t>(i)] = response(frequency(i));
    }

    int taps() const { return 40 - (order_ - 1) % 2; }

    // Tap t of the filter, infinitely many in both directions; those from 0 to taps() - 1 are kept.
    double tap(int t) const {
        const double fromCentre = t - (order_ % 2 == 0 ? 19.0 : 19.5);
        double sum = 0.0;
        for (int i = 0; i < points / 2; ++i)
            sum += response_[static_cast<std::size_t>(i)] * std::cos(frequency(i) * fromCentre);
        return 2.0 * sum / points;
    }

    // The response at a frequency between 0 and pi.
    double response(double w) const {
        const double twice = 2.0 * w < pi ? 2.0 * w : 2.0 * w - 2.0 * pi;
        return rootOfTwo * std::sqrt(shifts(w) / shifts(twice)) / std::pow(2.0, order_);
    }

 private:
    static constexpr int points = 800;
    static constexpr double pi = std::numbers::pi;

    int order_;
    Numbers response_;

    static double frequency(int i) { return (2 * i + 1) * pi / points; }

    // The sum of (w + 2 pi k)^(-2p) over all k; an integral stands for those beyond 400.
    double shifts(double w) const {
        constexpr int most = 400;
        const double tail = std::pow(2.0 * pi, -2 * order_) * std::pow(most + 0.5, 1 - 2 * order_);
        double sum = 2.0 * tail / (2 * order_ - 1);
        for (int k = -most; k <= most; ++k) sum += std::pow(w + 2.0 * pi * k, -2 * order_);
        return sum;
    }
};

// How far one level there and back is off at most, for samples in [-1, 1]: the sum of what the even
// shifts of a filter have in common, less 1 for the shift 0.
double reconstructionDefect(const Numbers& h) {
    double defect = 0.0;
    for (std::size_t shift = 0; shift < h.size(); shift += 2) {
        const double common =
            std::inner_product(h.begin() + static_cast<std::ptrdiff_t>(shift), h.end(), h.begin(), 0.0);
        defect += shift == 0 ? std::fabs(common - 1.0) : 2.0 * std::fabs(common);
    }
    return defect;
}

class Splines : public PackTest {};
class WaveletBasis : public PackTest {};

}  // namespace

TEST_F(Splines, PairsAreTheFormulasToTheLastBit) {
    for (const auto& [m, n] : splinePairs) {
        Numbers expected = dualFilter(m, n);
        const std::size_t rows = expected.size();
        const Numbers spline = power({0.5, 0.5}, m);
        expected.insert(expected.end(), spline.begin(), spline.end());
        expected.resize(2 * rows, 0.0);
        for (double& tap : expected) tap *= rootOfTwo;

        const Value pair = call("Bspline", m, n);
        EXPECT_EQ(pair.rows(), 2 * n + m - 1);
        EXPECT_EQ(pair.cols(), 2);
        EXPECT_EQ(pair.reals(), expected) << m << ", " << n;
    }
}

// Only a built-in pair is known to be symmetric.
TEST_F(Splines, PairsAreFoundAgainByTheirTaps) {
    for (const auto& [m, n] : splinePairs) {
        Numbers taps = numbers("Bspline", m, n);
        const int rows = 2 * n + m - 1;
        const Value found = Value::matrix(rows, 2, taps);
        EXPECT_EQ(complaint("dwts", column(noise(9)), 1, found), "no error");
        taps[0] *= 1.0 + 1e-11;
        const Value another = Value::matrix(rows, 2, taps);
        EXPECT_EQ(complaint("dwts", column(noise(9)), 1, another), "not a symmetric wavelet (3)");
    }
}

TEST_F(Splines, DegreeZeroIsHaar) {
    Numbers expected(40);
    expected[19] = expected[20] = std::sqrt(0.5);
    expectNear(numbers("bl", 0), expected, 1e-15);
}

TEST_F(Splines, TheTestsOwnResponseIsTheClosedOneForDegreeOne) {
    const InfiniteSplineFilter filter(1);
    for (const double w : {0.1, 0.9, 1.5, 1.6, 2.5, 3.1}) {
        const double closed = rootOfTwo * std::pow(std::cos(w / 2.0), 2) *
                              std::sqrt((2.0 + std::cos(w)) / (2.0 + std::cos(2.0 * w)));
        EXPECT_NEAR(filter.response(w), closed, 1e-12);
    }
}

TEST_F(Splines, OrthonormalOnesAreTheInfiniteFilterCutOff) {
    for (int degree = 1; degree <= 6; ++degree) {
        SCOPED_TRACE(degree);
        const InfiniteSplineFilter infinite(degree);
        const Numbers taps = numbers("bl", degree);
        ASSERT_EQ(taps.size(), static_cast<std::size_t>(infinite.taps()));
        double sum = 0.0;
        double squares = 0.0;
        for (int t = -300; t < 340; ++t) {
            const bool kept = 0 <= t && t < infinite.taps();
            const double tap = kept ? taps[static_cast<std::size_t>(t)] : infinite.tap(t);
            if (kept) {
                EXPECT_NEAR(tap, infinite.tap(t), 2e-14) << "at " << t;
                EXPECT_NEAR(tap, taps[taps.size() - 1 - static_cast<std::size_t>(t)], 1e-15) << "at " << t;
            }
            sum += tap;
            squares += tap * tap;
        }
        EXPECT_NEAR(sum, rootOfTwo, 1e-13);
        EXPECT_NEAR(squares, 1.0, 1e-13);
    }
}

// What is cut off costs, by degree; docs/filters.md has the same figures.
TEST_F(Splines, OrthonormalOnesReconstructToTheStatedFigure) {
    constexpr double figures[] = {4e-15, 1.3e-6, 1.2e-4, 1.3e-3, 4e-3, 1.1e-2, 1.8e-2};
    for (int degree = 0; degree <= 6; ++degree) {
        const Value filter = call("bl", degree);
        EXPECT_LE(reconstructionDefect(filter.reals()), figures[degree]);
        for (int n = 2; n <= 70; ++n) {
            for (int level = 0; 1 << level <= n; ++level) {
                const Numbers x = noise(static_cast<std::size_t>(n), static_cast<unsigned>(n));
                const Value back = call("idwts", call("dwts", column(x), level, filter), level, filter);
                expectNear(back.reals(), x, level * figures[degree]);
                if (HasFailure()) FAIL() << "degree " << degree << " length " << n << " level " << level;
            }
        }
    }
}

TEST_F(Splines, OrthonormalOnesAreComputedOnce) {
    const Numbers first = numbers("bl", 5);
    const long before = liveAllocations();
    const bool equal = numbers("bl", 5) == first;
    EXPECT_EQ(liveAllocations(), before);
    EXPECT_TRUE(equal);
}

TEST_F(WaveletBasis, ListsSmoothPacketAndDetailsFromTheCoarsest) {
    const auto rows = [&](int level, int dimension) {
        const Value basis = call("wavebs", level, dimension);
        EXPECT_EQ(basis.cols(), dimension + 1);
        std::vector<Numbers> list;
        for (int r = 0; r < basis.rows(); ++r) {
            list.emplace_back();
            for (int c = 0; c < basis.cols(); ++c) list.back().push_back(basis.at(r, c).real());
        }
        return list;
    };
    using Rows = std::vector<Numbers>;
    EXPECT_EQ(rows(0, 1), (Rows{{0, 0}}));
    EXPECT_EQ(rows(0, 2), (Rows{{0, 0, 0}}));
    EXPECT_EQ(rows(3, 1), (Rows{{3, 0}, {3, 1}, {2, 1}, {1, 1}}));
    EXPECT_EQ(rows(2, 2),
              (Rows{{2, 0, 0}, {2, 0, 1}, {2, 1, 0}, {2, 1, 1}, {1, 0, 1}, {1, 1, 0}, {1, 1, 1}}));
}

TEST(SplineRobustness, SurvivesEveryTrouble) {
    expectRobust({.function = "Bspline", .arguments = [](int) { return std::vector<Value>{3, 9}; }});
    expectRobust(
        {.function = "bl", .arguments = [](int variant) { return std::vector<Value>{variant % 7}; }});
    expectRobust({.function = "wavebs",
                  .arguments =
                      [](int) {
                          return std::vector<Value>{5, 1};
                      },
                  .polls = 5});
    expectRobust({.function = "wavebs",
                  .arguments =
                      [](int) {
                          return std::vector<Value>{5, 2};
                      },
                  .polls = 5});
}

// Where two arguments are wrong, the message shows which is looked at first.
INSTANTIATE_TEST_SUITE_P(Splines, Errors,
                         testing::ValuesIn(cases({
                             {"Bspline", {1, column({1})}, "non-scalar value", 2},
                             {"Bspline", {1.0 + 1i, 1.0 + 1i}, "must be real", 1},
                             {"Bspline", {-1, 1.0 + 1i}, "must be real", 2},
                             {"Bspline", {0, 1}, "must be positive integer", 1},
                             {"Bspline", {-0.5, -1}, "must be positive integer", 1},
                             {"Bspline", {1.5, 0}, "must be positive integer", 2},
                             {"Bspline", {1.5, 1.5}, "must be integer", 1},
                             {"Bspline", {4, 1.5}, "must be integer", 2},
                             {"Bspline", {4, 11}, "filter unimplemented", 1},
                             {"Bspline", {1, 11}, "filter unimplemented", 2},
                             {"Bspline", {std::nan(""), 1}, "must be integer", 1},
                             {"Bspline", {HUGE_VAL, 1}, "filter unimplemented", 1},
                             {"Bspline", {1, 2}, "filter unimplemented", 0},
                             {"Bspline", {2, 3}, "filter unimplemented", 0},
                             {"Bspline", {2, 10}, "filter unimplemented", 0},
                             {"Bspline", {3, 10}, "filter unimplemented", 0},
                             {"bl", {"3"}, "non-scalar value", 1},
                             {"bl", {1.5 + 1i}, "must be real", 1},
                             {"bl", {-1.5}, "must be integer", 1},
                             {"bl", {std::nan("")}, "must be integer", 1},
                             {"bl", {-1}, "invalid level", 1},
                             {"bl", {4294967296.0}, "invalid level", 1},
                             {"bl", {4294967295.0}, "filter unimplemented", 1},
                             {"bl", {7}, "filter unimplemented", 1},
                             {"wavebs", {1, "1"}, "non-scalar value", 2},
                             {"wavebs", {0.5 + 1i, 3.0 + 1i}, "must be real", 1},
                             {"wavebs", {0.5, 3.0 + 1i}, "must be real", 2},
                             {"wavebs", {2.5, 1}, "must be integer", 1},
                             {"wavebs", {-1, 1}, "invalid level", 1},
                             {"wavebs", {4294967296.0, 2}, "invalid level", 1},
                             {"wavebs", {-1.5, 3}, "invalid dimension", 2},
                             {"wavebs", {2, 1.5}, "invalid dimension", 2},
                             {"wavebs", {2, 0}, "invalid dimension", 2},
                             {"wavebs", {4294967295.0, 1}, "out of memory", 0},
                             {"wavebs", {4294967295.0, 2}, "out of memory", 0},
                         })),
                         nameOfError);
