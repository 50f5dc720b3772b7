// Scaling functions, wavelets and packets at points: against closed forms, the true functions, and the
// relations that define them.
#include <bit>
#include <chrono>
#include <cmath>
#include <iostream>
#include <limits>

#include "support/error_cases.h"
#include "support/function_table.h"
#include "support/robustness.h"
#include "support/spline_pairs.h"

namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double denormal = std::numeric_limits<double>::denorm_min();
constexpr double rootOfTwo = 1.4142135623730951;
constexpr double twoTo31 = 2147483648.0;
constexpr double twoTo32 = 4294967296.0;
constexpr std::complex<double> unreal = {0.0, 1.0};

std::size_t at(long i) {
    return static_cast<std::size_t>(i);
}

struct Placed {
    Numbers taps;
    int offset;

    int count() const { return static_cast<int>(taps.size()); }
    double firstMoment() const {
        double sum = 0.0;
        for (int q = 0; q < count(); ++q) sum += (offset + q) * taps[at(q)];
        return sum / rootOfTwo;
    }
};

// The high-pass filter that the low-pass filter of the other channel gives.
Placed highPass(const Placed& low) {
    Placed high = {Numbers(low.taps.rbegin(), low.taps.rend()), 2 - low.offset - low.count()};
    const bool negativeFirst = low.taps.size() / 2 % 2 == 0;
    for (std::size_t i = negativeFirst ? 0 : 1; i < high.taps.size(); i += 2) high.taps[i] = -high.taps[i];
    return high;
}

// The functions of a filter set by their definition.
class Functions {
 public:
    Functions(const Placed& low, const Placed& otherLow)
        : low_(low), high_(highPass(otherLow)), table_({1.0}) {
        for (int stage = 0; stage < 5; ++stage) multiply(1 << stage);
    }

    const Placed& low() const { return low_; }

    // Packet n, counted by frequency.
    double packet(unsigned n, double t) const { return filtered(n ^ (n >> 1), t); }
    // Where the tabulated scaling function begins and ends, in grid points.
    long first() const { return 31L * low_.offset; }
    long last() const { return first() + static_cast<long>(table_.size()) - 1; }

 private:
    Placed low_;
    Placed high_;
    Numbers table_;

    // The table's polynomial times that of the low-pass filter, with as many zeros between the taps.
    void multiply(int distance) {
        Numbers product(table_.size() + at(distance * (low_.count() - 1)));
        for (std::size_t i = 0; i < table_.size(); ++i) {
            for (int q = 0; q < low_.count(); ++q)
                product[i + at(q * distance)] += table_[i] * low_.taps[at(q)];
        }
        table_ = product;
    }
    double tabulated(double t) const {
        const long i = static_cast<long>(std::floor(32.0 * t));
        return first() <= i && i <= last() ? std::pow(2.0, 2.5) * table_[at(i - first())] : 0.0;
    }
    double filtered(unsigned w, double t) const {
        if (w == 0) return tabulated(t);
        const Placed& filter = w % 2 == 0 ? low_ : high_;
        double sum = 0.0;
        for (int q = 0; q < filter.count(); ++q)
            sum += filter.taps[at(q)] * filtered(w / 2, 2.0 * t - filter.offset - q);
        return rootOfTwo * sum;
    }
};

// The true scaling function at multiples of 2^-12, from its values at the integers, which are the
// eigenvector of the two-scale relation for the eigenvalue 1.
class TrueFunction {
 public:
    explicit TrueFunction(const Placed& low) : low_(low), values_(at(low.count()), 1.0) {
        for (int pass = 0; pass < 300; ++pass) values_ = normalised(applied());
        for (int level = 1; level <= depth; ++level) refine(level);
    }

    // Interpolated between the multiples.
    double operator()(double t) const {
        const double place = (t - low_.offset) * (1 << depth);
        const double below = std::floor(place);
        if (below < 0.0 || below + 1.0 >= static_cast<double>(values_.size())) return 0.0;
        const double part = place - below;
        return (1.0 - part) * values_[at(long(below))] + part * values_[at(long(below) + 1)];
    }

 private:
    static constexpr int depth = 12;
    Placed low_;
    Numbers values_;  // from the first tap's position on

    static Numbers normalised(Numbers values) {
        double sum = 0.0;
        for (const double value : values) sum += value;
        for (double& value : values) value /= sum;
        return values;
    }
    Numbers applied() const {
        Numbers next(values_.size());
        for (int i = 0; i < low_.count(); ++i) {
            for (int q = 0; q < low_.count(); ++q) {
                const int source = 2 * i - q;
                if (0 <= source && source < low_.count())
                    next[at(i)] += rootOfTwo * low_.taps[at(q)] * values_[at(source)];
            }
        }
        return next;
    }
    void refine(int level) {
        Numbers finer(at(static_cast<long>(low_.count() - 1) << level) + 1);
        for (int q = 0; q < low_.count(); ++q) {
            const std::size_t start = at(static_cast<long>(q) << (level - 1));
            for (std::size_t i = 0; i < values_.size(); ++i)
                finer[start + i] += rootOfTwo * low_.taps[at(q)] * values_[i];
        }
        values_ = finer;
    }
};

struct Named {
    std::string name;
    Value filter;
    Functions analysis;
    Functions synthesis;
};

class Evaluation : public PackTest {
 protected:
    Named orthonormal(const char* letters, const char* family, int taps) {
        const Value filter = call(family, taps);
        const bool coiflet = letters == std::string("coif");
        const Placed low = {filter.reals(), coiflet ? -taps / 3 : 1 - taps / 2};
        return {letters + std::to_string(taps), filter, {low, low}, {low, low}};
    }
    Named spline(int m, int n) {
        const Value filter = call("Bspline", m, n);
        Numbers synthesis(filter.re(1).begin(), filter.re(1).begin() + m + 1);
        const Placed a = {Numbers(filter.re(0).begin(), filter.re(0).end()), 1 - (filter.rows() + 1) / 2};
        const Placed s = {std::move(synthesis), 1 - (m + 2) / 2};
        return {"bs" + std::to_string(m) + std::to_string(n), filter, {a, s}, {s, a}};
    }
    std::vector<Named> families() {
        std::vector<Named> all;
        for (int taps = 2; taps <= 20; taps += 2) all.push_back(orthonormal("daub", "daublet", taps));
        for (int taps = 4; taps <= 20; taps += 2) all.push_back(orthonormal("symm", "symmlet", taps));
        for (int taps = 6; taps <= 30; taps += 6) all.push_back(orthonormal("coif", "coiflet", taps));
        for (const auto& [m, n] : splinePairs) all.push_back(spline(m, n));
        return all;
    }

    double value(std::string_view function, double x, double level, double shift, double index,
                 const Value& filter) {
        return call(function, x, level, shift, index, filter).real();
    }
    // Values of both sets' packet n of `digits` binary digits, at all points where any is not 0, which
    // are 2^-digits / 32 apart; index 0 is the point -reach.
    Numbers sampled(std::string_view function, unsigned n, int digits, const Value& filter, int reach) {
        const int perUnit = 32 << digits;
        Numbers values;
        for (int i = -reach * perUnit; i <= reach * perUnit; ++i)
            values.push_back(value(function, static_cast<double>(i) / perUnit, 0, 0, n, filter));
        return values;
    }
};

// The sum over the points of one function times the other, shifted by so many points.
double product(const Numbers& a, const Numbers& b, long shift) {
    double sum = 0.0;
    for (long i = std::max(0L, shift); i < std::min<long>(long(a.size()), long(b.size()) + shift); ++i)
        sum += a[at(i)] * b[at(i - shift)];
    return sum;
}

}  // namespace

TEST_F(Evaluation, HaarIsItsClosedForm) {
    const Value haar = call("daublet", 2);
    for (int i = -40; i < 80; ++i) {
        const double x = i / 32.0;
        const double phi = 0 <= i && i < 32;
        const double psi = i < 16 ? phi : -phi;
        for (const char* dual : {"", "dl"}) {
            const std::string dl = dual;
            EXPECT_NEAR(call(dl + "father", x, "haar").real(), phi, 1e-15) << x;
            EXPECT_NEAR(call(dl + "mother", x, "haar").real(), psi, 1e-15) << x;
            EXPECT_NEAR(call(dl + "mother", 8.0 * (x + 5.0), 3, 5, "d2").real(), psi / 8.0, 1e-15) << x;
            EXPECT_NEAR(call(dl + "mother", (x - 7.0) / 4.0, -2, -7, "haar").real(), 4.0 * psi, 1e-14) << x;
            EXPECT_NEAR(call(dl + "mother2d", x, 0.75, "haar", "H").real(), psi, 1e-14);
            EXPECT_NEAR(call(dl + "mother2d", x, 0.75, "haar", "V").real(), -phi, 1e-14);
            EXPECT_NEAR(call(dl + "mother2d", x, 0.75, "haar", "D").real(), -psi, 1e-14);
            EXPECT_NEAR(call(dl + "father2d", 2 * x + 4, 7.5, 1, 2, 3, "haar").real(), phi / 4, 1e-14);
        }
    }
    EXPECT_EQ(call("father", 1, "haar").real(), 0.0);
    EXPECT_EQ(call("father", std::nextafter(0.0, -1.0), "haar").real(), 0.0);
}

// The packets of the Haar filter are the Walsh functions: 1 at first, and then as many changes of sign
// as the packet's index.
TEST_F(Evaluation, HaarPacketsAreCountedByChangesOfSign) {
    const Value haar = call("daublet", 2);
    for (unsigned n = 0; n < 64; ++n) {
        double last = 1.0;
        unsigned changes = 0;
        for (int i = 0; i < 64; ++i) {
            const double now = value("wavelet", i / 64.0, 0, 0, n, haar);
            ASSERT_NEAR(std::fabs(now), 1.0, 1e-14);
            changes += now * last < 0.0;
            last = now;
        }
        EXPECT_EQ(changes, n);
    }
    constexpr unsigned many = (1U << 20) - 1;
    for (const int i : {0, 1, 2, 77776, 77777, 1048574, 1048575}) {
        const double x = (i + 0.5) / 1048576.0;
        EXPECT_NEAR(value("dlwavelet", x, 0, 0, many, haar), i % 2 == 0 ? 1.0 : -1.0, 1e-12);
    }
}

TEST_F(Evaluation, ValuesAreTheDefinitionWrittenOut) {
    for (const Named& named : families()) {
        SCOPED_TRACE(named.name);
        const Functions& phi = named.analysis;
        const Functions& dual = named.synthesis;
        for (long i = phi.first() - 33; i <= phi.last() + 33; ++i) {
            const double x = (static_cast<double>(i) + 0.75) / 32.0;
            EXPECT_NEAR(call("father", x, named.name).real(), phi.packet(0, x),
                        1e-12 * (1 + std::fabs(phi.packet(0, x))));
            EXPECT_NEAR(call("dlfather", x, named.name).real(), dual.packet(0, x), 1e-12);
            if (i % 5 != 0) continue;
            EXPECT_NEAR(call("mother", x, named.name).real(), phi.packet(1, x), 1e-11);
            EXPECT_NEAR(call("dlmother", x, named.name).real(), dual.packet(1, x), 1e-11);
            EXPECT_EQ(value("wavelet", x, 0, 0, 1, named.filter), call("mother", x, named.name).real());
            EXPECT_EQ(value("dlwavelet", x, 0, 0, 0, named.filter), call("dlfather", x, named.name).real());
        }
        if (named.analysis.low().count() > 9) continue;
        for (unsigned n = 2; n < 12; ++n) {
            for (const double t : {-1.21, -0.4, 0.0, 0.3, 0.5, 0.99, 2.2}) {
                EXPECT_NEAR(value("wavelet", t, 0, 0, n, named.filter), phi.packet(n, t), 1e-10)
                    << n << " " << t;
                EXPECT_NEAR(value("dlwavelet", 4 * (t + 9), 2, 9, n, named.filter), dual.packet(n, t) / 4,
                            1e-10);
            }
        }
        if (HasFailure()) return;
    }
}

// A value is constant on each cell of the grid, 2^level / 32 / 2^digits long.
TEST_F(Evaluation, OneCellHasOneValue) {
    const Value filter = call("symmlet", 8);
    for (const unsigned n : {0U, 1U, 5U}) {
        const double cell = std::ldexp(8.0 / 32.0, -static_cast<int>(std::bit_width(n)));
        const auto inCells = [&](double count) { return value("wavelet", count * cell, 3, 0, n, filter); };
        EXPECT_EQ(inCells(40.999999), inCells(40.0));
        EXPECT_NE(inCells(41.0), inCells(40.0));
        EXPECT_NE(inCells(39.999999), inCells(40.0));
    }
}

// With c the first moment of phi, grid point i has phi((i + c) / 32). Left out are the functions too
// rough for that: Coiflet 6 and the duals of the splines with few vanishing moments.
TEST_F(Evaluation, TheTableIsTheTrueFunctionShifted) {
    const auto expectTrue = [&](const char* function, const std::string& name, const Functions& set) {
        const TrueFunction phi(set.low());
        const double c = set.low().firstMoment();
        double worst = 0.0;
        for (long i = set.first() - 40; i < set.last() + 40; ++i) {
            const double t = static_cast<double>(i) / 32.0;
            worst = std::max(worst, std::fabs(call(function, t, name).real() - phi(t + c / 32.0)));
        }
        EXPECT_LT(worst, 2e-3) << function << " " << name;
    };
    for (const Named& named : families()) {
        const bool isSpline = named.name.starts_with("bs");
        if (named.name == "coif6" || named.name == "daub2") continue;
        if (!isSpline) expectTrue("father", named.name, named.analysis);
        if (named.name == "bs15" || named.name == "bs28") expectTrue("father", named.name, named.analysis);
        if (named.name.starts_with("bs3")) expectTrue("dlfather", named.name, named.synthesis);
    }
}

// B-splines of degree 0, 1, 2. The last is the true one up to a term of the grid's square.
TEST_F(Evaluation, DualsOfTheSplinePairsAreSplines) {
    const auto quadratic = [](double t) {
        const double d = std::fabs(t - 0.5);
        return d <= 0.5 ? 0.75 - d * d : d <= 1.5 ? 0.5 * (1.5 - d) * (1.5 - d) : 0.0;
    };
    for (const auto& [m, n] : splinePairs) {
        const std::string name = "bs" + std::to_string(m) + std::to_string(n);
        for (int i = -96; i <= 96; ++i) {
            const double t = i / 32.0;
            const double actual = call("dlfather", t, name).real();
            const double spline[] = {double(0 <= i && i < 32), std::max(0.0, 1.0 - std::fabs(t)),
                                     quadratic(t + 0.5 / 32)};
            EXPECT_NEAR(actual, spline[m - 1], m == 3 ? 2.5e-4 : 1e-14) << name << " " << t;
        }
    }
}

// As exactly as the taps at even and odd places have equal sums. The five stages multiply the response
// at the frequency pi, which should be 0, by at most 2^(5/2) 2^2; of that, 31/32 of all frequencies.
TEST_F(Evaluation, ScalingFunctionsAreAPartitionOfUnity) {
    const auto defect = [](const Placed& low) {
        double sum = 0.0;
        double alternating = 0.0;
        for (int q = 0; q < low.count(); ++q) {
            sum += low.taps[at(q)];
            alternating += q % 2 == 0 ? low.taps[at(q)] : -low.taps[at(q)];
        }
        return 22.0 * std::fabs(alternating) + 4.0 * std::fabs(sum - rootOfTwo);
    };
    for (const Named& named : families()) {
        EXPECT_LT(defect(named.analysis.low()), 1e-8) << named.name;
        for (int i = 0; i < 32; ++i) {
            double sum = 0.0;
            double dualSum = 0.0;
            for (int k = -35; k <= 35; ++k) {
                sum += call("father", i / 32.0, 0, k, named.name).real();
                dualSum += call("dlfather", i / 32.0, 0, k, named.name).real();
            }
            EXPECT_NEAR(sum, 1.0, defect(named.analysis.low()) + 1e-12) << named.name;
            EXPECT_NEAR(dualSum, 1.0, defect(named.synthesis.low()) + 1e-12) << named.name;
        }
    }
}

// Packets whose indices have equally many digits are made of the same samples of the tabulated
// function, whose five stages are orthogonal steps: their sums over the grid are exact. Packets of
// different numbers of digits are orthogonal up to the size of the table's shift only.
TEST_F(Evaluation, PacketsOfEquallyManyDigitsAreBiorthogonalOnTheGrid) {
    const Named tested[] = {orthonormal("daub", "daublet", 4), orthonormal("symm", "symmlet", 8),
                            spline(2, 2), spline(1, 3), spline(3, 1)};
    for (const Named& named : tested) {
        for (int digits = 0; digits <= 3; ++digits) {
            const unsigned first = 1U << digits >> 1;
            const unsigned end = 1U << digits;
            const int perUnit = 32 << digits;
            std::vector<Numbers> packets;
            std::vector<Numbers> duals;
            for (unsigned n = first; n < end; ++n) {
                packets.push_back(sampled("wavelet", n, digits, named.filter, 8));
                duals.push_back(sampled("dlwavelet", n, digits, named.filter, 8));
            }
            for (unsigned a = 0; a < packets.size(); ++a) {
                for (unsigned b = 0; b < duals.size(); ++b) {
                    for (int k = -8; k <= 8; ++k) {
                        EXPECT_NEAR(product(packets[a], duals[b], k * perUnit) / perUnit, a == b && k == 0,
                                    1e-11)
                            << named.name << ": packets " << first + a << ", " << first + b << " shift " << k;
                    }
                }
            }
        }
    }
}

// The table answers the refinement relation up to its shift; how far off it is, is no promise.
TEST_F(Evaluation, RefinementAndTimeAreReported) {
    const Named named = orthonormal("daub", "daublet", 4);
    double worst = 0.0;
    for (int i = -64; i < 96; ++i) {
        const double t = i / 32.0;
        double sum = 0.0;
        const Placed& low = named.analysis.low();
        for (int q = 0; q < low.count(); ++q)
            sum += rootOfTwo * low.taps[at(q)] * call("father", 2 * t - low.offset - q, "daub4").real();
        worst = std::max(worst, std::fabs(sum - call("father", t, "daub4").real()));
    }
    std::cout << "refinement relation of daub4 on the grid: off by at most " << worst << "\n";

    constexpr int calls = 20000;
    const std::vector<Value> arguments = {0.3, "daub4"};
    const auto started = std::chrono::steady_clock::now();
    for (int i = 0; i < calls; ++i) host.callRaw(pack(), "father", arguments);
    const std::chrono::duration<double, std::micro> took = std::chrono::steady_clock::now() - started;
    std::cout << "father(x, \"daub4\"): " << took.count() / calls << " microseconds a call\n";
}

TEST_F(Evaluation, ProductsInThePlane) {
    const Value filter = call("Bspline", 2, 4);
    for (const std::string dl : {"", "dl"}) {
        for (const auto& [x, y] : {std::pair(0.3, 1.7), {-2.0, 0.1}, {3.9, -1.4}}) {
            const auto along = [&](double t, int k, int n) {
                return value(dl + "wavelet", t, 1, k, n, filter);
            };
            EXPECT_EQ(call(dl + "wavelet2d", x, y, 1, -1, 2, 5, 3, filter).real(),
                      along(x, -1, 5) * along(y, 2, 3));
            EXPECT_EQ(call(dl + "father2d", x, y, 1, -1, 2, "bs24").real(), along(x, -1, 0) * along(y, 2, 0));
            EXPECT_EQ(call(dl + "mother2d", x, y, 1, -1, 2, "bs24", "H").real(),
                      along(x, -1, 1) * along(y, 2, 0));
            EXPECT_EQ(call(dl + "mother2d", x, y, 1, -1, 2, "bs24", "V").real(),
                      along(x, -1, 0) * along(y, 2, 1));
            EXPECT_EQ(call(dl + "mother2d", x, y, 1, -1, 2, "bs24", "D").real(),
                      along(x, -1, 1) * along(y, 2, 1));
        }
    }
}

TEST_F(Evaluation, OmittedArgumentsAreZeros) {
    const double x = 0.3;
    const double y = 0.8;
    for (const std::string dl : {"", "dl"}) {
        for (const std::string name : {"father", "mother"})
            EXPECT_TRUE(same(call(dl + name, x, "s6"), call(dl + name, x, 0, 0, "s6")));
        EXPECT_TRUE(same(call(dl + "father2d", x, y, "bs31"), call(dl + "father2d", x, y, 0, 0, 0, "bs31")));
        EXPECT_TRUE(same(call(dl + "mother2d", x, y, "bs31", "V"),
                         call(dl + "mother2d", x, y, 0, 0, 0, "bs31", "V")));
        const Value own = column({0.5, 0.6, 0.7});
        const Value pair = Value::matrix(3, 2, Numbers{0.5, 0.6, 0.7, 0.3, 0.4, 0.0});
        const std::string function = dl + "wavelet";
        EXPECT_TRUE(same(call(function, x, 0, 0, 3, own, 1), call(function, x, 0, 0, 3, own, 1, 0)));
        EXPECT_TRUE(same(call(function, x, 0, 0, 3, pair, row({1, -1})),
                         call(function, x, 0, 0, 3, pair, row({1, -1}), row({0, 0}))));
        EXPECT_TRUE(same(call(function + "2d", x, y, 0, 0, 0, 3, 1, own, 1),
                         call(function + "2d", x, y, 0, 0, 0, 3, 1, own, 1, 0)));
        EXPECT_EQ(value(function, x, 0, 0, 1, own), -call(function, x, 0, 0, 1, own, 0, 1).real());
    }
}

TEST_F(Evaluation, OffsetsOfAnySizeMoveTheTable) {
    const Numbers taps = {rootOfTwo / 2, rootOfTwo / 2};
    for (const int offset : {-16777216, -65536, 65536, 16777216}) {
        const Functions set({taps, offset}, {taps, offset});
        for (const unsigned n : {0U, 1U, 2U, 5U, 21U}) {
            // Where the first digit's function begins, walked through the two-scale relations.
            double begin = 31.0 / 32.0 * offset;
            for (unsigned g = n ^ (n >> 1), bit = 32; bit-- > 0;) {
                if (g >> bit == 0) continue;
                begin = (begin + (g >> bit & 1 ? -offset : offset)) / 2.0;
            }
            for (const double t : {begin - 0.25, begin, begin + 0.3125, begin + 0.9375, begin + 1.0, 0.0}) {
                EXPECT_NEAR(call("wavelet", t, 0, 0, n, column(taps), offset).real(), set.packet(n, t), 1e-13)
                    << offset << " " << n;
            }
            EXPECT_NEAR(std::fabs(call("wavelet", begin, 0, 0, n, column(taps), offset).real()), 1.0, 1e-13);
        }
        EXPECT_EQ(complaint("wavelet", 0, 0, 0, 4294967295.0, column(taps), offset), "out of memory (0)");
    }
}

TEST_F(Evaluation, FarPointsAreZero) {
    const Value haar = call("daublet", 2);
    const Value pair = call("Bspline", 3, 9);
    for (const double size : {1e4, 1e9, 1e15, 1e18, 1e300, inf}) {
        for (const double x : {size, -size}) {
            for (const double level : {-twoTo31, -1000.0, 0.0, 3.0}) {
                EXPECT_EQ(call("father", x, level, 0, "daub20").real(), 0.0) << x << " " << level;
                EXPECT_EQ(call("dlmother2d", x, 0.5, 0, 0, 0, "haar", "D").real(), 0.0);
                EXPECT_EQ(value("wavelet", x, level, twoTo31 - 1, 1000, pair), 0.0) << x << " " << level;
                EXPECT_EQ(value("dlwavelet", x, level, -twoTo31, 7, haar), 0.0) << x << " " << level;
            }
        }
    }
    EXPECT_EQ(call("father", NaN, "haar").real(), 0.0);
    EXPECT_EQ(call("mother", NaN, -twoTo31, 0, "haar").real(), 0.0);
    EXPECT_EQ(call("wavelet2d", NaN, inf, 0, 0, 0, 9, 9, haar).real(), 0.0);
    EXPECT_NEAR(call("father", denormal, "haar").real(), 1.0, 1e-15);
    EXPECT_EQ(call("father", -denormal, "haar").real(), 0.0);
    EXPECT_EQ(call("father", denormal, -twoTo31, 0, "haar").real(), 0.0);
}

TEST_F(Evaluation, LevelsAndShiftsOfTheirWholeRange) {
    EXPECT_NEAR(call("father", twoTo31 - 1, 0, twoTo31 - 1, "haar").real(), 1.0, 1e-15);
    EXPECT_NEAR(call("father", -twoTo31 + 0.5, 0, -twoTo31, "haar").real(), 1.0, 1e-15);
    EXPECT_EQ(call("father", -twoTo31 - 0.5, 0, -twoTo31, "haar").real(), 0.0);
    EXPECT_EQ(call("father", 1e300, 2000, 0, "haar").real(), 0.0);  // 2^-2000
    EXPECT_EQ(call("father", 1e300, twoTo31 - 1, 0, "haar").real(), 0.0);
    EXPECT_NEAR(call("father", 1e300, 1000, 0, "haar").real(), std::exp2(-1000.0), std::exp2(-1048.0));
    EXPECT_EQ(call("father", -1e300, 1000, 0, "haar").real(), 0.0);
    EXPECT_NEAR(call("father", 0, -1000, 0, "haar").real(), std::exp2(1000.0), std::exp2(952.0));
    for (const double level : {-1030.0, -5000.0, -twoTo31}) {
        EXPECT_EQ(complaint("father", 0, level, 0, "haar"), "overflow (0)");
        EXPECT_EQ(complaint("mother2d", 0, 0, level, 0, 0, "haar", "V"), "overflow (0)");
        EXPECT_EQ(complaint("father", 1, level, 0, "haar"), "no error");
    }
    EXPECT_EQ(complaint("father2d", 0, 0, -600, 0, 0, "haar"), "overflow (0)");
}

// The workers without a wavelet use the one selected, and name their own arguments.
class UnreachedWorkers : public Evaluation {
 protected:
    Value point(const char* name, double x, double level, double shift, std::complex<double> index) {
        using Worker = aComplex*(EfiCallContext*, aComplex*, aComplex*, aComplex*, aComplex*);
        const Value v[] = {x, level, shift, index};
        efihost::Call call(host);
        auto* worker = reinterpret_cast<Worker*>(pack().symbol(exportedName(name, "SSSS").c_str()));
        return call.finish(worker(call.context(), raw(v[0]), raw(v[1]), raw(v[2]), raw(v[3])));
    }
    Value plane(const char* name, const std::vector<Value>& v) {
        using S = aComplex*;
        using Worker = S(EfiCallContext*, S, S, S, S, S, S, S);
        efihost::Call call(host);
        auto* worker = reinterpret_cast<Worker*>(pack().symbol(exportedName(name, "SSSSSSS").c_str()));
        return call.finish(worker(call.context(), raw(v[0]), raw(v[1]), raw(v[2]), raw(v[3]), raw(v[4]),
                                  raw(v[5]), raw(v[6])));
    }

 private:
    static aComplex* raw(const Value& scalar) { return static_cast<aComplex*>(scalar.raw()); }
};

TEST_F(UnreachedWorkers, EvaluateTheSelectedWavelet) {
    const Value pair = call("Bspline", 2, 4);
    for (const char* name : {"wavelet", "dlwavelet"}) {
        const std::string name2d = name + std::string("2d");
        const Value expected = call(name, 0.3, 1, -1, 6, pair);
        EXPECT_TRUE(same(point(name, 0.3, 1, -1, 6), expected));
        const Value expected2d = call(name2d, 0.3, 0.4, 1, -1, 0, 6, 1, pair);
        EXPECT_TRUE(same(plane(name2d.c_str(), {0.3, 0.4, 1, -1, 0, 6, 1}), expected2d));
        call("mother", 0.0, "daub6");
        EXPECT_TRUE(same(point(name, 0.3, 0, 0, 1), call("mother", 0.3, "daub6")));
        EXPECT_EQ(complaint(name, 0, 0, 0, 0, column({})), "filter unimplemented (5)");
        EXPECT_TRUE(same(point(name, 0.3, 0, 0, 1), call("mother", 0.3, "daub6")));
    }
}

TEST_F(UnreachedWorkers, NameTheirOwnArguments) {
    call("daublet", 2);
    for (const char* name : {"wavelet", "dlwavelet"}) {
        EXPECT_EQ(complaintOf(point(name, 0, 0.5, 0, unreal)), "must be real (4)");
        EXPECT_EQ(complaintOf(point(name, 0, 0.5, 0.5, 0.5)), "must be integer (4)");
        EXPECT_EQ(complaintOf(point(name, 0, 0.5, 0.5, -1)), "invalid level (4)");
        EXPECT_EQ(complaintOf(point(name, 0, 0.5, 0.5, 0)), "must be integer (3)");
        EXPECT_EQ(complaintOf(point(name, 0, twoTo31, 0, 0)), "invalid level (2)");
    }
    for (const char* name : {"wavelet2d", "dlwavelet2d"}) {
        for (int i = 0; i < 7; ++i) {
            std::vector<Value> arguments(7, 0);
            arguments[at(i)] = unreal;
            EXPECT_EQ(complaintOf(plane(name, arguments)), "must be real (" + std::to_string(i + 1) + ")");
        }
        EXPECT_EQ(complaintOf(plane(name, {0, 0, 0.5, 0, 0, 0, 0.5})), "must be positive integer (7)");
        EXPECT_EQ(complaintOf(plane(name, {0, 0, 0.5, 0.5, 0, 0, 0})), "must be integer (3)");
        EXPECT_EQ(complaintOf(plane(name, {0, 0, 0, 0.5, 0, twoTo32, 0})), "invalid level (6)");
        EXPECT_EQ(complaintOf(plane(name, {0, 0, 0, 0, 0.5, 0, twoTo32})), "invalid level (7)");
        EXPECT_EQ(complaintOf(plane(name, {0, 0, 0, 0, twoTo31, 0, 0})), "invalid level (5)");
    }
}

TEST(EvaluationRobustness, SurvivesEveryTrouble) {
    // Filters of the user's that the pack does not know yet.
    const auto filter = [](int variant) { return column({0.5, 0.5 + 1e-3 * variant, 0.25}); };
    const auto pair = [](int variant) {
        return Value::matrix(3, 2, Numbers{0.5, 0.5, 0.5, 0.25, 0.5 + 1e-3 * variant, 0.25});
    };
    using Arguments = std::vector<Value>;
    for (const char* name : {"father", "dlmother"}) {
        const int polls = name == std::string("father") ? 0 : 1;
        expectRobust({name, [](int) { return Arguments{0.5, "bl2"}; }, polls});
        expectRobust({name, [](int) { return Arguments{0.5, -1, 0, "bs24"}; }, polls});
    }
    expectRobust({"dlfather2d", [](int) { return Arguments{0.5, 0.5, "symm8"}; }, 0});
    expectRobust({"mother2d", [](int) { return Arguments{0.5, 0.5, 1, 0, 0, "coif6", "D"}; }, 2});
    for (const char* name : {"wavelet", "dlwavelet"}) {
        const char* refused = "filter unimplemented (5)";
        expectRobust({name, [=](int v) { return Arguments{0.5, 0, 0, 0, filter(v)}; }, 0, refused});
        expectRobust({name, [=](int v) { return Arguments{0.5, 0, 0, 9, pair(v)}; }, 4, refused});
        expectRobust({name,
                      [=](int v) {
                          return Arguments{0.5, 0, 0, 2, pair(v), row({1, 0})};
                      },
                      2, refused});
        expectRobust({name, [=](int v) { return Arguments{0.5, 0, 0, 1, filter(v), 1, 1}; }, 1, refused});
        const std::string name2d = name + std::string("2d");
        const char* refused2d = "filter unimplemented (8)";
        expectRobust(
            {name2d, [=](int v) { return Arguments{0.5, 0.2, 0, 0, 0, 5, 2, filter(v)}; }, 5, refused2d});
        expectRobust(
            {name2d, [=](int v) { return Arguments{0.5, 0.2, 0, 0, 0, 1, 0, filter(v), 1}; }, 1, refused2d});
        expectRobust({name2d,
                      [=](int v) {
                          return Arguments{0.5, 0.2, 0, 0, 0, 0, 3, pair(v), row({1, 0}), row({1, 0})};
                      },
                      2, refused2d});
    }
}

namespace {

using Table = std::vector<ErrorCase>;

struct BadName {
    std::string name;
    const char* message;
};
const BadName badNames[] = {
    {"", "invalid filter wavelet string"},
    {"daub", "invalid filter wavelet string"},
    {"4daub", "invalid filter wavelet string"},
    {"da4b", "invalid filter wavelet string"},
    {"Haar", "invalid filter wavelet string"},
    {"haar2", "invalid filter wavelet string"},
    {"bs1", "invalid filter wavelet string"},
    {"bs123", "invalid filter wavelet string"},
    {"daub4 ", "invalid filter wavelet string"},
    {std::string(5000, 'x') + "1", "invalid filter wavelet string"},
    {"daub22", "filter unimplemented"},
    {"daub" + std::string(5000, '7') + "6", "filter unimplemented"},
    {"bs19", "filter unimplemented"},
    {"coif7", "must be even integer"},
    {"symm0", "must be positive integer"},
    {"bs01", "must be positive integer"},
    {"bl" + std::string(500, '9'), "invalid level"},
};

// Where several arguments are wrong, the message shows which is looked at first.
void addNamed(Table& table, const char* f) {
    table.push_back({f, {unreal, "no"}, "must be real", 1});
    table.push_back({f, {unreal, unreal, unreal, "no"}, "must be real", 1});
    table.push_back({f, {0, unreal, unreal, "no"}, "must be real", 2});
    table.push_back({f, {0, 0.5, unreal, "no"}, "must be real", 3});
    for (const auto& [name, message] : badNames) {
        table.push_back({f, {0, name}, message, 2});
        table.push_back({f, {0, 0.5, 0.5, name}, message, 4});
    }
    for (const double whole : {0.5, NaN, -1e-300}) {
        table.push_back({f, {0, 0.5, whole, "haar"}, "must be integer", 3});
        table.push_back({f, {0, whole, 0, "haar"}, "must be integer", 2});
    }
    for (const double far : {twoTo31, -twoTo31 - 1, 1e18, inf, -inf}) {
        table.push_back({f, {0, 0.5, far, "haar"}, "invalid level", 3});
        table.push_back({f, {0, far, 0, "haar"}, "invalid level", 2});
    }
    table.push_back({f, {column({1}), 0, "haar"}, "Wrong number of Arguments", 0});
    table.push_back({f, {0, column({1}), 0, 4}, "non-scalar value", 2});
    table.push_back({f, {0, 4}, "must be string", 2});
    table.push_back({f, {0, 0, 0, 4}, "must be string", 4});
}

// `type` is empty for the scaling functions.
void addNamed2d(Table& table, const char* f, const std::vector<Value>& type) {
    const auto add = [&](std::vector<Value> arguments, const char* message, int index) {
        arguments.insert(arguments.end(), type.begin(), type.end());
        table.push_back({f, std::move(arguments), message, index});
    };
    add({unreal, unreal, "no"}, "must be real", 1);
    add({0, unreal, "no"}, "must be real", 2);
    for (int i = 0; i < 5; ++i) {
        std::vector<Value> arguments(5, 0.5);
        std::fill(arguments.begin() + i, arguments.end(), unreal);
        arguments.emplace_back("no");
        add(arguments, "must be real", i + 1);
    }
    for (const auto& [name, message] : badNames) {
        add({0, 0, name}, message, 3);
        add({0, 0, 0.5, 0.5, 0.5, name}, message, 6);
    }
    for (const double level : {0.5, NaN, twoTo31, -twoTo31 - 1, inf, std::exp2(40.0)})
        add({0, 0, level, 0.5, 0.5, "haar"}, "must be integer", 3);
    for (const double shift : {0.5, NaN}) {
        add({0, 0, 0, shift, twoTo31, "haar"}, "must be integer", 4);
        add({0, 0, 0, 0, shift, "haar"}, "must be integer", 5);
    }
    for (const double shift : {twoTo31, -twoTo31 - 1, inf}) {
        add({0, 0, 0, shift, 0.5, "haar"}, "invalid level", 4);
        add({0, 0, 0, 0, shift, "haar"}, "invalid level", 5);
    }
}

void addTypes(Table& table, const char* f) {
    for (const char* type : {"", "h", "HV", "A", "H ", "X"}) {
        table.push_back({f, {0, 0, "haar", type}, "invalid 2d wavelet string", 4});
        table.push_back({f, {0, 0, 0.5, 0.5, 0.5, "haar", type}, "invalid 2d wavelet string", 7});
    }
    table.push_back({f, {0, 0, "no", "x"}, "invalid filter wavelet string", 3});
    table.push_back({f, {0, 0, 0, 0, 0, "daub22", "x"}, "filter unimplemented", 6});
    table.push_back({f, {0, 0, "haar", 1}, "must be string", 4});
}

// Calls with the wavelet as arrays after so many scalars.
void addArrays(Table& table, const char* f, std::size_t scalars) {
    const std::vector<Value> wrong(scalars, unreal);
    const int position = static_cast<int>(scalars) + 1;
    const auto add = [&](const std::vector<Value>& wavelet, const char* message, int index) {
        std::vector<Value> arguments = wrong;
        arguments.insert(arguments.end(), wavelet.begin(), wavelet.end());
        table.push_back({f, arguments, message, index});
    };
    const Value haar = column({rootOfTwo / 2, rootOfTwo / 2});
    const Value bad = Value::column(Numbers{1, 2}, Numbers{0, 1});
    add({bad}, "must be real array", position);
    add({bad, bad}, "must be real array", position);
    add({bad, bad, bad}, "must be real array", position);
    add({haar, bad}, "must be real array", position + 1);
    add({haar, unreal}, "must be real array", position + 1);
    add({haar, bad, bad}, "must be real array", position + 1);
    add({haar, 0, unreal}, "must be real array", position + 2);
    add({column({}), 0, bad}, "must be real array", position + 2);
    add({column({})}, "filter unimplemented", position);
    add({haar, row({0, 0})}, "filter unimplemented", position);
    add({haar, 0, 2}, "filter unimplemented", position);
    add({haar, 0.5, 0}, "filter unimplemented", position);
    add({haar, 0, 0, 0}, "Wrong number of Arguments", 0);
    add({}, "Wrong number of Arguments", 0);
    add({1}, "must be array", position);
    add({haar, "0"}, "EfiMustBeScalarOrArray", position + 1);
    for (std::size_t i = 0; i < scalars; ++i) {
        for (const std::vector<Value>& wavelet : {std::vector<Value>{haar}, {haar, 0}, {haar, 0, 1}}) {
            std::vector<Value> arguments(scalars, 0.5);
            std::fill(arguments.begin() + static_cast<long>(i), arguments.end(), unreal);
            arguments.insert(arguments.end(), wavelet.begin(), wavelet.end());
            table.push_back({f, arguments, "must be real", static_cast<int>(i) + 1});
        }
    }
}

void addPoints(Table& table, const char* f) {
    const Value haar = column({rootOfTwo / 2, rootOfTwo / 2});
    const auto add = [&](double level, double shift, double index, const char* message, int argument) {
        table.push_back({f, {0, level, shift, index, haar}, message, argument});
        table.push_back({f, {0, level, shift, index, haar, 0, 0}, message, argument});
    };
    for (const double index : {0.5, NaN, -0.5, twoTo32 + 0.5}) add(0.5, 0.5, index, "must be integer", 4);
    for (const double index : {-1.0, twoTo32, 1e18, inf, -inf}) add(0.5, 0.5, index, "invalid level", 4);
    for (const double shift : {0.5, NaN}) add(0.5, shift, 0, "must be integer", 3);
    for (const double shift : {twoTo31, -twoTo31 - 1, inf}) add(0.5, shift, 0, "invalid level", 3);
    for (const double level : {0.5, NaN}) add(level, 0, 4294967295.0, "must be integer", 2);
    for (const double level : {twoTo31, -twoTo31 - 1, -inf}) add(level, 0, 0, "invalid level", 2);
    for (const double index : {4294967295.0, twoTo31, 134217728.0}) add(0, 0, index, "out of memory", 0);
}

void addPlanePoints(Table& table, const char* f) {
    const Value haar = column({rootOfTwo / 2, rootOfTwo / 2});
    const auto add = [&](double level, double kx, double ky, double nx, double ny, const char* message,
                         int index) {
        table.push_back({f, {0, 0, level, kx, ky, nx, ny, haar}, message, index});
        table.push_back({f, {0, 0, level, kx, ky, nx, ny, haar, 0}, message, index});
    };
    for (const double index : {0.5, -1.0, NaN, -inf}) {
        add(0.5, 0.5, 0.5, index, -1, "must be positive integer", 6);
        add(0.5, 0.5, 0.5, twoTo32, index, "must be positive integer", 7);
    }
    for (const double level : {0.5, std::exp2(40.0), -twoTo31 - 1, NaN, inf})
        add(level, 0.5, 0.5, twoTo32, twoTo32, "must be integer", 3);
    for (const double index : {twoTo32, inf}) {
        add(0, 0.5, 0.5, index, twoTo32, "invalid level", 6);
        add(0, 0, 0.5, 0, index, "invalid level", 7);
    }
    add(0, 0.5, 0.5, 0, twoTo32, "must be integer", 4);
    add(0, twoTo31, 0.5, 0, 0, "invalid level", 4);
    add(0, 0, NaN, 0, 0, "must be integer", 5);
    add(0, 0, -twoTo31 - 1, 0, 0, "invalid level", 5);
    add(0, 0, 0.5, 4294967295.0, 0, "out of memory", 0);
    add(0, 0, 0, 0, 4294967295.0, "out of memory", 0);
}

Table evaluationErrors() {
    Table table;
    for (const char* f : {"father", "mother", "dlfather", "dlmother"}) addNamed(table, f);
    for (const char* f : {"father2d", "dlfather2d"}) addNamed2d(table, f, {});
    for (const char* f : {"mother2d", "dlmother2d"}) {
        addNamed2d(table, f, {"D"});
        addTypes(table, f);
    }
    for (const char* f : {"wavelet", "dlwavelet"}) {
        addArrays(table, f, 4);
        addPoints(table, f);
    }
    for (const char* f : {"wavelet2d", "dlwavelet2d"}) {
        addArrays(table, f, 7);
        addPlanePoints(table, f);
    }
    return cases(std::move(table));
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(Evaluation, Errors, testing::ValuesIn(evaluationErrors()), nameOfError);
