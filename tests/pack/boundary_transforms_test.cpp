// dwts, idwts, dwti, idwti: reconstruction, agreement with slow formulas, and what the interval
// filters promise about polynomials.
#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>

#include "support/error_cases.h"
#include "support/robustness.h"
#include "support/spline_pairs.h"

using namespace std::complex_literals;

namespace {

constexpr double root = std::numbers::sqrt2;

const Numbers haar = {root / 2, root / 2};
const Numbers daublet4 = {0.48296291314453416, 0.83651630373780794, 0.22414386804201339,
                          -0.12940952255126037};

Value image(int rows, int cols, const Numbers& values) {
    return Value::matrix(rows, cols, values);
}

Value noisyImage(int rows, int cols) {
    return image(rows, cols, noise(static_cast<std::size_t>(rows * cols)));
}

int halved(int n, int level) {
    for (; level > 0; --level) n = (n + 1) / 2;
    return n;
}

// A spline pair written out: low-pass and high-pass filters of the analysis with their offsets, up
// to a factor sqrt(2).
struct Pair {
    int m;
    int n;
    Numbers low;
    int lowOffset;
    Numbers high;
    int highOffset;
};

const Pair pairs[] = {
    {1, 3, {-1.0 / 16, 1.0 / 16, 0.5, 0.5, 1.0 / 16, -1.0 / 16}, -2, {0.5, -0.5}, 0},
    {2, 2, {-0.125, 0.25, 0.75, 0.25, -0.125}, -2, {0.25, -0.5, 0.25}, 0},
    {2,
     4,
     {3.0 / 128, -3.0 / 64, -0.125, 19.0 / 64, 45.0 / 64, 19.0 / 64, -0.125, -3.0 / 64, 3.0 / 128},
     -4,
     {0.25, -0.5, 0.25},
     0},
    {3, 1, {-0.25, 0.75, 0.75, -0.25}, -1, {-0.125, 0.375, -0.375, 0.125}, -1},
};

// The mirror images, one after the other: about the end samples for a filter with a middle tap,
// beside them for one without.
Numbers extended(const Numbers& x, bool wholeSample, int margin) {
    const int n = static_cast<int>(x.size());
    Numbers result;
    for (int p = -margin; p < n + margin; ++p) {
        int inside = p;
        while (inside < 0 || inside >= n) {
            if (inside < 0) inside = wholeSample ? -inside : -1 - inside;
            if (inside >= n) inside = wholeSample ? 2 * n - 2 - inside : 2 * n - 1 - inside;
        }
        result.push_back(x[static_cast<std::size_t>(inside)]);
    }
    return result;
}

Numbers oneLevel(const Pair& pair, const Numbers& x) {
    constexpr int margin = 16;
    const Numbers ext = extended(x, pair.low.size() % 2 != 0, margin);
    const auto outputs = [&](const Numbers& filter, int offset, std::size_t count, Numbers& into) {
        for (std::size_t k = 0; k < count; ++k) {
            const std::size_t start = static_cast<std::size_t>(margin + offset) + 2 * k;
            double sum = 0.0;
            for (std::size_t j = 0; j < filter.size(); ++j) sum += root * filter[j] * ext[start + j];
            into.push_back(sum);
        }
    };
    Numbers result;
    outputs(pair.low, pair.lowOffset, (x.size() + 1) / 2, result);
    outputs(pair.high, pair.highOffset, x.size() / 2, result);
    return result;
}

Numbers slowTransform(const Pair& pair, Numbers x, int levels) {
    std::size_t smooth = x.size();
    for (int level = 0; level < levels; ++level) {
        const Numbers part =
            oneLevel(pair, Numbers(x.begin(), x.begin() + static_cast<std::ptrdiff_t>(smooth)));
        std::copy(part.begin(), part.end(), x.begin());
        smooth = (smooth + 1) / 2;
    }
    return x;
}

class SymmetricTransform : public PackTest {};

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

// Solves a small system, with pivots.
Numbers solve(Matrix a, Numbers b) {
    const std::size_t n = b.size();
    for (std::size_t col = 0; col < n; ++col) {
        std::size_t pivot = col;
        for (std::size_t r = col; r < n; ++r) {
            if (std::fabs(a[r][col]) > std::fabs(a[pivot][col])) pivot = r;
        }
        std::swap(a[col], a[pivot]);
        std::swap(b[col], b[pivot]);
        for (std::size_t r = 0; r < n; ++r) {
            if (r == col) continue;
            const double factor = a[r][col] / a[col][col];
            for (std::size_t c = col; c < n; ++c) a[r][c] -= factor * a[col][c];
            b[r] -= factor * b[col];
        }
    }
    for (std::size_t r = 0; r < n; ++r) b[r] /= a[r][r];
    return b;
}

double binomial(int n, int k) {
    double value = 1.0;
    for (int i = 1; i <= k; ++i) value = value * (n - k + i) / i;
    return value;
}

// The moments of the scaling function of a low-pass filter, by its two-scale relation.
Numbers momentsOf(const Numbers& h, int offset, int count) {
    Numbers moments = {1.0};
    for (int l = 1; l < count; ++l) {
        double sum = 0.0;
        for (int s = 1; s <= l; ++s) {
            double ofFilter = 0.0;
            for (std::size_t j = 0; j < h.size(); ++j)
                ofFilter += h[j] * std::pow(offset + static_cast<int>(j), s);
            sum += binomial(l, s) * ofFilter * moments[static_cast<std::size_t>(l - s)];
        }
        moments.push_back(sum / root / (std::pow(2.0, l) - 1.0));
    }
    return moments;
}

// The coefficients of the powers y^d, where y is the distance from one end, in the scaling
// functions next to that end. Those inside are integrals against shifts of the one scaling
// function. The N at the edge belong to functions of their own; they follow from the low-pass rows,
// because halving the scale must turn the coefficients of y^d into 2^(d + 1/2) times themselves.
class EdgePolynomials {
 public:
    // lowRows are the first N low-pass rows, read from this end; inside is the place, relative to
    // its own, where the scaling function of the first sample begins.
    EdgePolynomials(const Matrix& lowRows, const Numbers& h, int offset, int origin)
        : lowRows_(lowRows),
          moments_(momentsOf(h, offset, static_cast<int>(lowRows.size()))),
          origin_(origin) {}

    Numbers coefficients(int degree, std::size_t count) const {
        const std::size_t edge = lowRows_.size();
        Numbers c(std::max(count, 3 * edge));
        for (std::size_t p = edge; p < c.size(); ++p) c[p] = inside(static_cast<double>(p) + origin_, degree);
        Matrix system(edge, Numbers(edge));
        Numbers right(edge);
        for (std::size_t i = 0; i < edge; ++i) {
            for (std::size_t t = 0; t < edge; ++t) system[i][t] = lowRows_[i][t];
            system[i][i] -= std::pow(2.0, degree + 0.5);
            for (std::size_t t = edge; t < 3 * edge - 1; ++t) right[i] -= lowRows_[i][t] * c[t];
        }
        const Numbers atEdge = solve(system, right);
        std::copy(atEdge.begin(), atEdge.end(), c.begin());
        c.resize(count);
        return c;
    }

 private:
    Matrix lowRows_;
    Numbers moments_;
    int origin_;

    double inside(double shift, int degree) const {
        double sum = 0.0;
        for (int l = 0; l <= degree; ++l)
            sum += binomial(degree, l) * std::pow(shift, degree - l) * moments_[static_cast<std::size_t>(l)];
        return sum;
    }
};

// One step on n samples, by rows, and what it makes of polynomials.
class IntervalTransform : public PackTest {
 protected:
    void assemble(const IntervalFilter& filter, int n) {
        which_ = filter;
        h_ = call(filter.family, filter.taps());
        matrix_.assign(static_cast<std::size_t>(n), Numbers(static_cast<std::size_t>(n)));
        for (std::size_t t = 0; t < matrix_.size(); ++t) {
            Numbers unit(matrix_.size());
            unit[t] = 1.0;
            const Numbers response = numbers("dwti", column(unit), 1, h_);
            for (std::size_t r = 0; r < matrix_.size(); ++r) matrix_[r][t] = response[r];
        }
    }

    // The first N low-pass rows on the left, or the last N on the right, from the end inwards.
    Matrix edgeRows(bool right) const {
        const std::size_t n = matrix_.size();
        Matrix rows;
        for (std::size_t i = 0; i < static_cast<std::size_t>(which_.moments); ++i) {
            Numbers row = matrix_[right ? n / 2 - 1 - i : i];
            if (right) std::reverse(row.begin(), row.end());
            rows.push_back(row);
        }
        return rows;
    }

    // The coefficients of (x / n)^d for x from 0 to n, among n functions.
    Numbers polynomial(int degree, std::size_t n) const {
        const int N = which_.moments;
        const Numbers h = h_.reals();
        const EdgePolynomials left(edgeRows(false), h, 1 - N, 0);
        const EdgePolynomials right(edgeRows(true), Numbers(h.rbegin(), h.rend()), -N, 1);
        const double side = static_cast<double>(n);
        Numbers c = left.coefficients(degree, n);
        for (double& value : c) value /= std::pow(side, degree);
        // From the right end, x / n is 1 - y / n.
        for (std::size_t e = 0; e < static_cast<std::size_t>(N); ++e) {
            double sum = 0.0;
            for (int l = 0; l <= degree; ++l)
                sum += binomial(degree, l) * std::pow(-1.0 / side, l) * right.coefficients(l, n)[e];
            c[n - 1 - e] = sum;
        }
        return c;
    }

    IntervalFilter which_ = {};
    Value h_;
    Matrix matrix_;
};

}  // namespace

TEST_F(SymmetricTransform, InvertsEveryPairAtEveryLengthAndLevel) {
    for (const auto& [m, n] : splinePairs) {
        const Value pair = call("Bspline", m, n);
        for (int length = 2; length <= 70; ++length) {
            const Numbers x = noise(static_cast<std::size_t>(length), static_cast<unsigned>(length));
            for (int level = 0; 1 << level <= length; ++level) {
                SCOPED_TRACE(testing::Message()
                             << m << ", " << n << " length " << length << " level " << level);
                const Value y = call("dwts", column(x), level, pair);
                expectNear(numbers("idwts", y, level, pair), x, 1e-14);
            }
        }
    }
}

TEST_F(SymmetricTransform, InvertsImagesOfEvenAndOddSides) {
    for (const auto& [rows, cols] : {std::pair(2, 2), {3, 2}, {8, 8}, {9, 16}, {16, 9}, {31, 33}, {64, 5}}) {
        const Value x = noisyImage(rows, cols);
        for (const auto& [m, n] : splinePairs) {
            const Value pair = call("Bspline", m, n);
            for (int level = 0; 1 << level <= std::min(rows, cols); ++level) {
                const Value y = call("dwts", x, level, pair);
                expectNear(numbers("idwts", y, level, pair), x.reals(), 2e-14);
            }
        }
    }
}

TEST_F(SymmetricTransform, AgreesWithExplicitExtensionAndConvolution) {
    for (const Pair& pair : pairs) {
        const Value filter = call("Bspline", pair.m, pair.n);
        for (int n = 2; n <= 40; ++n) {
            const Numbers x = noise(static_cast<std::size_t>(n), static_cast<unsigned>(n));
            for (int level = 1; 1 << level <= n; ++level) {
                SCOPED_TRACE(testing::Message() << pair.m << ", " << pair.n << " length " << n);
                expectNear(numbers("dwts", column(x), level, filter), slowTransform(pair, x, level), 1e-13);
            }
        }
    }
}

TEST_F(SymmetricTransform, TreatsColumnsAndThenRowsOfTheSmoothBlock) {
    const int rows = 9;
    const int cols = 7;
    const Pair& pair = pairs[1];
    Numbers expected = noise(rows * cols);
    const Value x = strided(rows, cols, expected);
    const auto treat = [&](std::size_t first, std::size_t step, int count) {
        Numbers line;
        for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i)
            line.push_back(expected[first + i * step]);
        line = oneLevel(pair, line);
        for (std::size_t i = 0; i < line.size(); ++i) expected[first + i * step] = line[i];
    };
    for (int level = 0; level < 2; ++level) {
        const int r = halved(rows, level);
        const int c = halved(cols, level);
        for (int j = 0; j < c; ++j) treat(static_cast<std::size_t>(j * rows), 1, r);
        for (int i = 0; i < r; ++i) treat(static_cast<std::size_t>(i), rows, c);
    }
    expectNear(numbers("dwts", x, 2, call("Bspline", 2, 2)), expected, 1e-14);
}

TEST_F(IntervalTransform, IsOrthogonal) {
    for (const IntervalFilter& filter : intervalFilters) {
        assemble(filter, 4 * filter.taps());
        SCOPED_TRACE(testing::Message() << filter.family << " " << filter.taps());
        for (const Numbers& a : matrix_) {
            for (const Numbers& b : matrix_) {
                const double product = std::inner_product(a.begin(), a.end(), b.begin(), 0.0);
                ASSERT_NEAR(product, &a == &b ? 1.0 : 0.0, filter.exactness());
            }
        }
    }
}

// The details of a polynomial of degree below N are zero and its smooth coefficients are those of
// the same polynomial on half the scale, from one end to the other. Degree N is not reproduced.
TEST_F(IntervalTransform, IsBlindToPolynomials) {
    for (const IntervalFilter& filter : intervalFilters) {
        const int n = 4 * filter.taps();
        assemble(filter, n);
        for (int degree = 0; degree < filter.moments; ++degree) {
            SCOPED_TRACE(testing::Message() << filter.family << " " << filter.taps() << " degree " << degree);
            const Numbers fine = polynomial(degree, static_cast<std::size_t>(n));
            const Numbers coarse = polynomial(degree, static_cast<std::size_t>(n / 2));
            const Numbers y = numbers("dwti", column(fine), 1, h_);
            for (std::size_t k = 0; k < y.size(); ++k) {
                const double expected = k < coarse.size() ? root * coarse[k] : 0.0;
                EXPECT_NEAR(y[k], expected, filter.exactness()) << "at " << k;
            }
        }
    }
}

TEST_F(IntervalTransform, IsNotBlindToOtherPolynomials) {
    for (const IntervalFilter& filter : intervalFilters) {
        const int n = 4 * filter.taps();
        assemble(filter, n);
        const auto largestDetail = [&](const Numbers& x, int skipped) {
            const Numbers y = numbers("dwti", column(x), 1, h_);
            double largest = 0.0;
            for (int k = n / 2 + skipped; k < n - skipped; ++k)
                largest = std::max(largest, std::fabs(y[static_cast<std::size_t>(k)]));
            return largest;
        };
        const Numbers constant(static_cast<std::size_t>(n), 1.0);
        EXPECT_GT(largestDetail(constant, 0), 1e-3) << "samples are no coefficients at the edges";
        EXPECT_LT(largestDetail(constant, filter.moments), filter.exactness());
        Numbers power(static_cast<std::size_t>(n));
        for (std::size_t p = 0; p < power.size(); ++p) power[p] = std::pow(double(p) / n, filter.moments);
        EXPECT_GT(largestDetail(power, filter.moments), 10 * filter.exactness());
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
        const Value w = call(N <= 3 ? "daublet" : "symmlet", 2.0 * static_cast<double>(N));
        const std::size_t n = 8 * N;
        const auto& [signs, first] = published[N - 2];
        for (std::size_t band = 0; band < 4; ++band) {
            SCOPED_TRACE(testing::Message() << "N " << N << " band " << band);
            const bool right = band >= 2;
            const std::size_t start = band % 2 * n / 2;
            Numbers unit(n);
            unit[right ? n - 1 : 0] = 1.0;
            const Numbers y = numbers("dwti", column(unit), 1, w);
            const auto row = [&](std::size_t i) { return y[right ? start + n / 2 - 1 - i : start + i]; };
            EXPECT_NEAR(row(0), first[band], N < 7 ? 2e-9 : 5e-6);
            for (std::size_t i = 0; i < N; ++i) EXPECT_EQ(row(i) > 0.0, signs[band][i] == '+') << "row " << i;
        }
    }
}

TEST_F(IntervalTransform, InvertsSignalsAndImages) {
    for (const IntervalFilter& filter : intervalFilters) {
        SCOPED_TRACE(testing::Message() << filter.family << " " << filter.taps());
        const Value w = call(filter.family, filter.taps());
        const int shortest = 2 * filter.taps();
        for (int level = 0; level <= 5; ++level) {
            const int n = level == 0 ? filter.moments : shortest << (level - 1);
            const Numbers x = noise(static_cast<std::size_t>(n), static_cast<unsigned>(level));
            const Value y = call("dwti", column(x), level, w);
            expectNear(numbers("idwti", y, level, w), x, filter.roundTrip());
            if (level == 0) {
                EXPECT_EQ(y.reals(), x);
            }
        }
        const Value x = noisyImage(2 * shortest, 3 * shortest);
        expectNear(numbers("idwti", call("dwti", x, 2, w), 2, w), x.reals(), 2 * filter.roundTrip());
    }
}

TEST_F(IntervalTransform, TreatsImagesByColumnsAndThenRows) {
    const int rows = 8;
    const int cols = 16;
    const Value w = column(daublet4);
    const Value x = noisyImage(rows, cols);
    Numbers expected;
    for (int c = 0; c < cols; ++c) {
        const Numbers line = numbers("dwti", Value::column(x.re(c)), 1, w);
        expected.insert(expected.end(), line.begin(), line.end());
    }
    for (int r = 0; r < rows; ++r) {
        Numbers line;
        for (int c = 0; c < cols; ++c) line.push_back(expected[static_cast<std::size_t>(c * rows + r)]);
        line = numbers("dwti", column(line), 1, w);
        for (int c = 0; c < cols; ++c)
            expected[static_cast<std::size_t>(c * rows + r)] = line[static_cast<std::size_t>(c)];
    }
    EXPECT_EQ(numbers("dwti", x, 1, w), expected);
}

// A signal polls once a level. An image polls for each column and each row; the inverse symmetric
// transform once more for each level.
TEST(BoundaryRobustness, PollsAsOftenAsSaidAndSurvivesEveryTrouble) {
    const auto lines = [](int rows, int cols, int levels) {
        int count = 0;
        for (int level = 0; level < levels; ++level) count += halved(rows, level) + halved(cols, level);
        return count;
    };
    const auto given = [](const Value& data, int level, const Numbers& filter) {
        return [=](int) { return std::vector<Value>{data, level, column(filter)}; };
    };
    const Value signal = column(noise(32));
    const Value square = noisyImage(16, 16);
    const Value odd = noisyImage(13, 7);
    expectRobust({.function = "dwts", .arguments = given(column(noise(37)), 5, haar), .polls = 5});
    expectRobust({.function = "idwts", .arguments = given(column(noise(37)), 5, haar), .polls = 5});
    expectRobust({.function = "dwti", .arguments = given(signal, 3, daublet4), .polls = 3});
    expectRobust({.function = "idwti", .arguments = given(signal, 3, daublet4), .polls = 3});
    expectRobust({.function = "dwts", .arguments = given(odd, 2, haar), .polls = lines(13, 7, 2)});
    expectRobust({.function = "idwts", .arguments = given(odd, 2, haar), .polls = 2 + lines(13, 7, 2)});
    expectRobust({.function = "dwti", .arguments = given(square, 2, daublet4), .polls = lines(16, 16, 2)});
    expectRobust({.function = "idwti", .arguments = given(square, 2, daublet4), .polls = lines(16, 16, 2)});
    expectRobust({.function = "dwts", .arguments = given(odd, 0, haar), .polls = 0});
    expectRobust({.function = "idwti", .arguments = given(square, 0, daublet4), .polls = 0});
}

namespace {

// The refusals that a transform and its inverse share.
std::vector<ErrorCase> both(const std::string& name, const std::vector<ErrorCase>& table) {
    std::vector<ErrorCase> all;
    for (const std::string& function : {name, "i" + name}) {
        for (ErrorCase error : table) {
            error.function = function;
            all.push_back(error);
        }
    }
    return cases(all);
}

const Value complexColumn = Value::column(Numbers{1, 2}, Numbers{0, 1});
const Value seven = column(noise(7));
const Value five = Value::matrix(2, 2, Numbers{1, 2, 3, std::nan("")});  // no filter

}  // namespace

// Where two arguments are wrong, the message shows which is looked at first.
INSTANTIATE_TEST_SUITE_P(
    Symmetric, Errors,
    testing::ValuesIn(both("dwts",
                           {
                               {"", {1, 1, column(haar)}, "must be array", 1},
                               {"", {seven, seven, column(haar)}, "non-scalar value", 2},
                               {"", {seven, 1, "haar"}, "must be array", 3},
                               {"", {complexColumn, 9, complexColumn}, "must be real array", 3},
                               {"", {complexColumn, 9, five}, "filter unimplemented", 3},
                               {"", {complexColumn, -1.0 + 1i, column(daublet4)}, "must be real array", 1},
                               {"", {seven, -1.0 + 1i, column(daublet4)}, "must be real", 2},
                               {"", {seven, -0.5, column(daublet4)}, "invalid level", 2},
                               {"", {seven, 4294967295.5, column(daublet4)}, "invalid level", 2},
                               {"", {seven, HUGE_VAL, column(daublet4)}, "invalid level", 2},
                               {"", {seven, 2.5, column(daublet4)}, "must be integer", 2},
                               {"", {seven, 3, column(daublet4)}, "invalid level", 2},
                               {"", {seven, 4294967295.0, column(haar)}, "invalid level", 2},
                               {"", {column({1}), 1, column(haar)}, "invalid level", 2},
                               {"", {noisyImage(7, 8), 3, column(haar)}, "invalid level", 2},
                               {"", {noisyImage(8, 7), 3, column(haar)}, "invalid level", 2},
                               {"", {noisyImage(1, 8), 1, column(haar)}, "invalid level", 2},
                               {"", {seven, 2, column(daublet4)}, "not a symmetric wavelet", 3},
                               {"", {seven, 0, column(daublet4)}, "not a symmetric wavelet", 3},
                               {"", {seven, 2, column({0.25, 0.5, 0.25})}, "not a symmetric wavelet", 3},
                           })),
    nameOfError);

INSTANTIATE_TEST_SUITE_P(
    Interval, Errors,
    testing::ValuesIn(both(
        "dwti",
        {
            {"", {1, 1, column(haar)}, "must be array", 1},
            {"", {seven, seven, column(haar)}, "non-scalar value", 2},
            {"", {seven, 1, "haar"}, "must be array", 3},
            {"", {complexColumn, 9, complexColumn}, "must be real array", 3},
            {"", {complexColumn, 9, five}, "filter unimplemented", 3},
            {"", {complexColumn, -1.0 + 1i, column(haar)}, "must be real array", 1},
            {"", {seven, -1.0 + 1i, column(haar)}, "must be real", 2},
            {"", {seven, -0.5, column(haar)}, "invalid level", 2},
            {"", {seven, 4294967295.5, column(haar)}, "invalid level", 2},
            {"", {seven, 2.5, column(haar)}, "must be integer", 2},
            {"", {seven, 3, column(haar)}, "interval wavelets unimplemented", 3},
            {"", {column(noise(16)), 1, column({0.25, 0.5, 0.25})}, "interval wavelets unimplemented", 3},
            {"", {seven, 1, column(daublet4)}, "invalid level", 2},
            {"", {column(noise(16)), 3, column(daublet4)}, "invalid level", 2},  // refused by the third step
            {"", {column(noise(16)), 4, column(daublet4)}, "invalid level", 2},
            {"", {column(noise(6)), 1, column(daublet4)}, "invalid level", 2},
            {"", {column({1}), 0, column(daublet4)}, "invalid level", 2},
            {"", {noisyImage(16, 4), 1, column(daublet4)}, "invalid level", 2},
            {"", {noisyImage(4, 16), 1, column(daublet4)}, "invalid level", 2},
            {"", {noisyImage(16, 1 + 16), 1, column(daublet4)}, "invalid level", 2},
            {"", {noisyImage(8, 1), 4294967295.0, column(daublet4)}, "invalid level", 2},
            {"", {noisyImage(2, 1 + 0), 0, column(noise(0))}, "filter unimplemented", 3},
        })),
    nameOfError);

// Which of the built-in filters are refused for what they are.
TEST_F(PackTest, BoundaryTransformsTakeTheWaveletsThatFitThem) {
    const Value x = column(noise(64));
    const auto expectTaken = [&](const Value& w, bool symmetric, bool interval) {
        EXPECT_EQ(complaint("dwts", x, 1, w), symmetric ? "no error" : "not a symmetric wavelet (3)");
        EXPECT_EQ(complaint("dwti", x, 1, w), interval ? "no error" : "interval wavelets unimplemented (3)");
    };
    for (int taps = 2; taps <= 20; taps += 2)
        expectTaken(call("daublet", taps), taps == 2, taps == 4 || taps == 6);
    for (int taps = 4; taps <= 20; taps += 2) expectTaken(call("symmlet", taps), false, taps <= 16);
    for (const int taps : {6, 12, 18, 24, 30}) expectTaken(call("coiflet", taps), false, false);
    for (int degree = 0; degree <= 6; ++degree) expectTaken(call("bl", degree), true, false);
    for (const auto& [m, n] : splinePairs) expectTaken(call("Bspline", m, n), true, false);
}
