// The spline families against their formulas, and the ordinary wavelet basis.
#include <cmath>
#include <numbers>

#include "support/packets.h"
#include "support/spline_pairs.h"

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

// The infinite filter of the orthonormal splines of a degree of at least 1, cut off, by its definition:
// the spline's transform is sin(w/2)^p / (w/2)^p, and S below is what its shifts have together.
Numbers splineFilter(int degree) {
    constexpr double pi = std::numbers::pi;
    constexpr int points = 800;
    const int order = degree + 1;
    // The sum of (w + 2 pi k)^(-2p) over all k; an integral stands for those beyond 400.
    const auto S = [=](double w) {
        constexpr int most = 400;
        const double tail = std::pow(2.0 * pi, -2 * order) * std::pow(most + 0.5, 1 - 2 * order);
        double sum = 2.0 * tail / (2 * order - 1);
        for (int k = -most; k <= most; ++k) sum += std::pow(w + 2.0 * pi * k, -2 * order);
        return sum;
    };
    Numbers taps(degree % 2 == 0 ? 40 : 39);
    for (int i = 0; i < points / 2; ++i) {
        const double w = (2 * i + 1) * pi / points;
        const double twice = 2.0 * w < pi ? 2.0 * w : 2.0 * w - 2.0 * pi;
        const double response = rootOfTwo * std::sqrt(S(w) / S(twice)) / std::pow(2.0, order);
        double place = 0.5 - static_cast<double>(taps.size()) / 2.0;
        for (double& tap : taps) tap += 2.0 / points * response * std::cos(w * place++);
    }
    return taps;
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

TEST_F(Splines, DegreeZeroIsHaar) {
    Numbers expected(40);
    expected[19] = expected[20] = std::sqrt(0.5);
    expectNear(numbers("bl", 0), expected, 1e-15);
}

TEST_F(Splines, OrthonormalOnesAreTheInfiniteFilterCutOff) {
    for (int degree = 1; degree <= 6; ++degree) {
        SCOPED_TRACE(degree);
        const Numbers taps = numbers("bl", degree);
        expectNear(taps, splineFilter(degree), 2e-14);
        expectNear(taps, Numbers(taps.rbegin(), taps.rend()), 1e-15);
    }
}

// What is cut off costs, by degree; docs/filters.md has the same figures.
TEST_F(Splines, OrthonormalOnesReconstructToTheStatedFigure) {
    constexpr double figures[] = {4e-15, 1.3e-6, 1.2e-4, 1.3e-3, 4e-3, 1.1e-2, 1.8e-2};
    for (int degree = 0; degree <= 6; ++degree) {
        const Value filter = call("bl", degree);
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

TEST_F(WaveletBasis, ListsSmoothPacketAndDetailsFromTheCoarsest) {
    const auto expectRows = [&](int level, int dimension, const std::vector<Numbers>& rows) {
        EXPECT_TRUE(same(call("wavebs", level, dimension), basisRows(rows))) << level << ", " << dimension;
    };
    expectRows(0, 1, {{0, 0}});
    expectRows(0, 2, {{0, 0, 0}});
    expectRows(3, 1, {{3, 0}, {3, 1}, {2, 1}, {1, 1}});
    expectRows(2, 2, {{2, 0, 0}, {2, 0, 1}, {2, 1, 0}, {2, 1, 1}, {1, 0, 1}, {1, 1, 0}, {1, 1, 1}});
}
