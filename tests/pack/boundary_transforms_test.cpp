// dwts, idwts, dwti, idwti: reconstruction, agreement with slow formulas, and what the interval
// filters promise about polynomials.
#include <algorithm>
#include <cmath>
#include <numeric>

#include "support/filter_pair.h"
#include "support/packets.h"
#include "support/spline_pairs.h"

namespace {

const Value daublet4 =
    column({0.48296291314453416, 0.83651630373780794, 0.22414386804201339, -0.12940952255126037});

class SymmetricTransform : public PackTest {
 protected:
    // A spline pair, whose filters are centred on position 0 or, without a middle tap, on 1/2.
    FilterPair splinePair(const Value& columns) {
        const auto taps = [&](int c) {
            Numbers low(columns.re(c).begin(), columns.re(c).end());
            while (low.back() == 0.0) low.pop_back();
            return low;
        };
        const auto offset = [](const Numbers& low) { return -(static_cast<int>(low.size()) - 1) / 2; };
        return {taps(0), taps(1), offset(taps(0)), offset(taps(1))};
    }
};

// A filter of the interval with its number N of vanishing moments.
struct IntervalFilter {
    const char* family;
    int moments;
    int taps() const { return 2 * moments; }
    // Of five levels there and back: as exact as the published interior filters.
    double roundTrip() const { return moments <= 3 ? 3e-15 : 5e-12; }
    double exactness() const { return moments <= 3 ? 1e-14 : 3e-12; }
};

constexpr IntervalFilter intervalFilters[] = {{"daublet", 2}, {"daublet", 3}, {"symmlet", 2},
                                              {"symmlet", 3}, {"symmlet", 4}, {"symmlet", 5},
                                              {"symmlet", 6}, {"symmlet", 7}, {"symmlet", 8}};

using Matrix = std::vector<Numbers>;  // by rows

double product(const Numbers& a, const Numbers& b) {
    return std::inner_product(a.begin(), a.end(), b.begin(), 0.0);
}

// The low-pass and high-pass rows of a step on the interval, read from one end.
struct End {
    Matrix low;
    Matrix high;
};

class IntervalTransform : public PackTest {
 protected:
    // One step on n samples, by rows.
    Matrix assemble(const Value& filter, std::size_t n) {
        Matrix matrix(n, Numbers(n));
        for (std::size_t t = 0; t < n; ++t) {
            Numbers unit(n);
            unit[t] = 1.0;
            const Numbers response = numbers("dwti", column(unit), 1, filter);
            for (std::size_t r = 0; r < n; ++r) matrix[r][t] = response[r];
        }
        return matrix;
    }

    static End endOf(const Matrix& matrix, bool right) {
        const auto middle = matrix.begin() + static_cast<std::ptrdiff_t>(matrix.size() / 2);
        End end = {{matrix.begin(), middle}, {middle, matrix.end()}};
        for (Matrix* rows : {&end.low, &end.high}) {
            if (!right) continue;
            std::reverse(rows->begin(), rows->end());
            for (Numbers& row : *rows) std::reverse(row.begin(), row.end());
        }
        return end;
    }

    // Coefficients that are powers of the place inside have continuations to the N functions of the
    // edge that leave no details; these must be polynomials, too: on the next scale there are no
    // details either.
    static void expectBlindToPolynomials(const End& end, std::size_t N, double tolerance) {
        const auto edge = [N](const Numbers& a, const Numbers& b) {
            return std::inner_product(a.begin(), a.begin() + static_cast<std::ptrdiff_t>(N), b.begin(), 0.0);
        };
        const auto subtract = [](Numbers& from, double factor, const Numbers& row, std::size_t count) {
            for (std::size_t p = 0; p < count; ++p) from[p] -= factor * row[p];
        };
        // The details of the edge, recombined so that each alone can be made to vanish.
        Matrix details(end.high.begin(), end.high.begin() + static_cast<std::ptrdiff_t>(N));
        for (std::size_t i = 0; i < N; ++i) {
            for (std::size_t j = 0; j < i; ++j)
                subtract(details[i], edge(details[i], details[j]) / edge(details[j], details[j]), details[j],
                         details[j].size());
        }
        for (std::size_t degree = 0; degree < N; ++degree) {
            Numbers fine(end.low[0].size());
            for (std::size_t p = N; p < fine.size(); ++p)
                fine[p] = std::pow(static_cast<double>(p) / static_cast<double>(fine.size()), degree);
            for (const Numbers& row : details) subtract(fine, product(row, fine) / edge(row, row), row, N);
            Numbers coarse(fine.size());
            for (std::size_t i = 0; i < end.low.size(); ++i) coarse[i] = product(end.low[i], fine);
            for (std::size_t i = 0; i < N; ++i)
                EXPECT_NEAR(product(end.high[i], coarse), 0.0, tolerance) << "degree " << degree;
        }
    }
};

}  // namespace

TEST_F(SymmetricTransform, FollowsTheDefinitionAndIsInverted) {
    std::vector<std::pair<int, int>> shapes = {{3, 2}, {9, 16}, {16, 9}, {31, 33}, {64, 5}, {70, 1}};
    for (int length = 2; length <= 40; ++length) shapes.emplace_back(length, 1);
    for (const auto& [m, n] : splinePairs) {
        const Value filter = call("Bspline", m, n);
        const PairBank bank(splinePair(filter));
        for (const auto& [rows, cols] : shapes) {
            const Value x = strided(rows, cols, image(rows, cols).reals());
            for (int level = 0; 1 << level <= (cols == 1 ? rows : std::min(rows, cols)); ++level) {
                SCOPED_TRACE(testing::Message() << m << n << ", " << rows << " x " << cols << ", " << level);
                const Value y = call("dwts", x, level, filter);
                expectNear(y.reals(),
                           transformed<double>(plain::symmetricAnalysis, Direction::analysis, bank, x.reals(),
                                               rows, cols, level),
                           1e-13);
                expectNear(numbers("idwts", y, level, filter), x.reals(), cols == 1 ? 1e-14 : 2e-14);
            }
        }
    }
}

TEST_F(IntervalTransform, IsOrthogonalAndBlindToPolynomials) {
    for (const IntervalFilter& filter : intervalFilters) {
        SCOPED_TRACE(testing::Message() << filter.family << " " << filter.taps());
        const auto N = static_cast<std::size_t>(filter.moments);
        const Matrix matrix = assemble(call(filter.family, filter.taps()), 8 * N);
        for (const Numbers& a : matrix) {
            for (const Numbers& b : matrix)
                ASSERT_NEAR(product(a, b), &a == &b ? 1.0 : 0.0, filter.exactness());
        }
        for (const bool right : {false, true})
            expectBlindToPolynomials(endOf(matrix, right), N, filter.exactness());
    }
}

// The construction leaves the sign of each row open: that of the first coefficient, as published, of
// the left low-pass and high-pass rows and the right ones; and the first number of each, for the order.
TEST_F(IntervalTransform, HasTheSignsAndTheOrderOfThePublishedRows) {
    struct Published {
        const char* signs[4];
        double first[4];
    };
    const Published published[] = {
        {{"++", "-+", "+-", "-+"}, {0.6033325119, -0.7965435169, 0.8705087534, -0.2575129195}},
        {{"+--", "+-+", "+-+", "+-+"}, {0.3888997639, 0.5837809695, 0.9096849943, 0.07221948764}},
        {{"+-+-", "-+++", "+-+-", "--++"}, {0.9097539258, -0.07573970762, 0.9154705188, -0.1982779906}},
        {{"+-+-+", "+-+-+", "+-+-+", "+---+"}, {0.9302490657, 0.02803062751, 0.6629994791, 0.2704377396}},
        {{"+-+-+-", "-+-+++", "+-+-+-", "-+++-+"},
         {0.923118446, -0.02321705918, 0.9236675275, -0.05565971353}},
        {{"+--++-+", "+---+-+", "+-+-+-+", "+--++++"},
         {0.9426568713, 0.02111640418, 0.9091449027, 0.01058599696}},
        {{"+-+-+-+-", "-++-++++", "+-+-+-+-", "-+-++-++"},
         {0.928113626, -0.007274859222, 0.928096108, -0.01623137602}},
    };
    for (std::size_t N = 2; N <= 8; ++N) {
        const Matrix matrix = assemble(call(N <= 3 ? "daublet" : "symmlet", 2 * N), 8 * N);
        const auto& [signs, first] = published[N - 2];
        for (std::size_t band = 0; band < 4; ++band) {
            SCOPED_TRACE(testing::Message() << "N " << N << " band " << band);
            const End end = endOf(matrix, band >= 2);
            const Matrix& rows = band % 2 == 0 ? end.low : end.high;
            EXPECT_NEAR(rows[0][0], first[band], N < 7 ? 2e-9 : 5e-6);
            for (std::size_t i = 0; i < N; ++i) EXPECT_EQ(rows[i][0] > 0.0, signs[band][i] == '+') << i;
        }
    }
}

TEST_F(IntervalTransform, InvertsSignalsAndImages) {
    for (const IntervalFilter& filter : intervalFilters) {
        SCOPED_TRACE(testing::Message() << filter.family << " " << filter.taps());
        const Value h = call(filter.family, filter.taps());
        const int shortest = 2 * filter.taps();
        const auto expectInverted = [&](const Value& x, int level, double tolerance) {
            const Value y = call("dwti", x, level, h);
            EXPECT_EQ(same(y, x), level == 0);
            expectNear(numbers("idwti", y, level, h), x.reals(), tolerance);
        };
        expectInverted(signal(filter.moments), 0, 0.0);
        for (int level = 1; level <= 5; ++level)
            expectInverted(signal(shortest << (level - 1)), level, filter.roundTrip());
        expectInverted(image(2 * shortest, 3 * shortest), 2, 2 * filter.roundTrip());
    }
}

// Which of the built-in filters are refused for what they are.
TEST_F(PackTest, BoundaryTransformsTakeTheWaveletsThatFitThem) {
    const auto expectTaken = [&](const Value& w, bool symmetric, bool interval) {
        EXPECT_EQ(complaint("dwts", signal(64), 1, w),
                  symmetric ? "no error" : "not a symmetric wavelet (3)");
        EXPECT_EQ(complaint("dwti", signal(64), 1, w),
                  interval ? "no error" : "interval wavelets unimplemented (3)");
    };
    for (int taps = 2; taps <= 20; taps += 2)
        expectTaken(call("daublet", taps), taps == 2, taps == 4 || taps == 6);
    for (int taps = 4; taps <= 20; taps += 2) expectTaken(call("symmlet", taps), false, taps <= 16);
    for (const int taps : {6, 12, 18, 24, 30}) expectTaken(call("coiflet", taps), false, false);
    for (int degree = 0; degree <= 6; ++degree) expectTaken(call("bl", degree), true, false);
    for (const auto& [m, n] : splinePairs) expectTaken(call("Bspline", m, n), true, false);
}
