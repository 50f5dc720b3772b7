// Scaling functions, wavelets and packets at points: against closed forms and the relations that
// define them.
#include <array>
#include <cmath>
#include <limits>

#include "support/function_table.h"
#include "support/packets.h"

namespace {

constexpr double denormal = std::numeric_limits<double>::denorm_min();
constexpr double twoTo31 = 0x1p31;

class Evaluation : public PackTest {
 protected:
    double value(std::string_view function, double x, double level, double shift, double index,
                 const Value& filter) {
        return call(function, x, level, shift, index, filter).real();
    }
};

}  // namespace

TEST_F(Evaluation, HaarIsItsClosedForm) {
    for (int i = -40; i < 80; ++i) {
        const double x = i / 32.0;
        const double phi = 0 <= i && i < 32;
        const double psi = i < 16 ? phi : -phi;
        for (const std::string dl : {"", "dl"}) {
            EXPECT_NEAR(call(dl + "father", x, "haar").real(), phi, 1e-15) << x;
            EXPECT_NEAR(call(dl + "mother", 8.0 * (x + 5.0), 3, 5, "haar").real(), psi / 8.0, 1e-15) << x;
            EXPECT_NEAR(call(dl + "mother", (x - 7.0) / 4.0, -2, -7, "haar").real(), 4.0 * psi, 1e-14) << x;
            EXPECT_NEAR(call(dl + "mother2d", x, 0.75, "haar", "V").real(), -phi, 1e-14);
        }
    }
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

TEST_F(Evaluation, NamedFunctionsArePacketsZeroAndOne) {
    for (const auto& [name, family, taps] : {std::tuple("daub8", "daublet", 8),
                                             {"symm10", "symmlet", 10},
                                             {"coif12", "coiflet", 12},
                                             {"bl3", "bl", 3}}) {
        const Value filter = call(family, taps);
        for (const double x : {-1.2, 0.0, 0.3, 2.7}) {
            for (const std::string dl : {"", "dl"}) {
                EXPECT_EQ(value(dl + "wavelet", x, 0, 0, 0, filter), call(dl + "father", x, name).real());
                EXPECT_EQ(value(dl + "wavelet", x, 0, 0, 1, filter), call(dl + "mother", x, name).real());
            }
            EXPECT_EQ(value("dlwavelet", 4 * (x + 9), 2, 9, 5, filter) * 4,
                      value("dlwavelet", x, 0, 0, 5, filter));
        }
    }
}

TEST_F(Evaluation, ProductsInThePlane) {
    const Value filter = call("Bspline", 2, 4);
    for (const std::string dl : {"", "dl"}) {
        for (const auto& [x, y] : {std::pair(0.3, 1.7), {-2.0, 0.1}, {3.9, -1.4}}) {
            const auto product = [&, x = x, y = y](int nx, int ny) {
                return value(dl + "wavelet", x, 1, -1, nx, filter) *
                       value(dl + "wavelet", y, 1, 2, ny, filter);
            };
            EXPECT_EQ(call(dl + "wavelet2d", x, y, 1, -1, 2, 5, 3, filter).real(), product(5, 3));
            EXPECT_EQ(call(dl + "father2d", x, y, 1, -1, 2, "bs24").real(), product(0, 0));
            for (const auto& [type, row, col] : {std::tuple("H", 1, 0), {"V", 0, 1}, {"D", 1, 1}})
                EXPECT_EQ(call(dl + "mother2d", x, y, 1, -1, 2, "bs24", type).real(), product(row, col));
        }
    }
}

TEST_F(Evaluation, OmittedArgumentsAreZeros) {
    const Value pair = Value::matrix(3, 2, Numbers{0.5, 0.6, 0.7, 0.3, 0.4, 0.0});
    const auto expectSame = [&](const std::string& function, const Arguments& few, const Arguments& all) {
        EXPECT_TRUE(same(host.call(pack(), function, few), host.call(pack(), function, all))) << function;
    };
    const Value own = column({0.5, 0.6, 0.7});
    const Arguments point = {0.3, 1, -1, 3};
    const Arguments planePoint = {0.3, 0.8, 1, -1, 0, 3, 1};
    for (const std::string dl : {"", "dl"}) {
        expectSame(dl + "father2d", {0.3, 0.8, "bs31"}, {0.3, 0.8, 0, 0, 0, "bs31"});
        for (const auto& [function, scalars] :
             {std::pair(dl + "wavelet", point), {dl + "wavelet2d", planePoint}}) {
            expectSame(function, joined(scalars, {own}), joined(scalars, {own, 0}));
            expectSame(function, joined(scalars, {pair, row({1, -1})}),
                       joined(scalars, {pair, row({1, -1}), row({0, 0})}));
        }
        const std::string function = dl + "wavelet";
        EXPECT_EQ(value(function, 0.3, 0, 0, 1, own), -call(function, 0.3, 0, 0, 1, own, 0, 1).real());
    }
}

TEST_F(Evaluation, OffsetsOfAnySizeMoveTheTable) {
    for (const int offset : {-16777216, -65536, 65536, 16777216}) {
        const auto actual = [&](double t, unsigned n, int first) {
            return call("wavelet", t, 0, 0, n, haar(), first).real();
        };
        for (const unsigned n : {0U, 1U, 2U, 5U, 21U}) {
            // Where the first digit's function begins, walked through the two-scale relations.
            double begin = 31.0 / 32.0 * offset;
            for (unsigned g = n ^ (n >> 1), bit = 32; bit-- > 0;) {
                if (g >> bit == 0) continue;
                begin = (begin + (g >> bit & 1 ? -offset : offset)) / 2.0;
            }
            for (const double t : {-0.25, 0.0, 0.3125, 0.9375, 1.0})
                EXPECT_NEAR(actual(begin + t, n, offset), actual(t, n, 0), 1e-13) << offset << " " << n;
            EXPECT_EQ(actual(0.0, n, offset), 0.0);
        }
        EXPECT_EQ(complaint("wavelet", 0, 0, 0, 4294967295.0, haar(), offset), "out of memory (0)");
    }
}

TEST_F(Evaluation, FarPointsAreZero) {
    const Value pair = call("Bspline", 3, 9);
    for (const double x : {1e4, -1e4, 1e9, -1e9, 1e15, -1e15, 1e18, 1e300, -1e300, inf, -inf, NaN}) {
        for (const double level : {-twoTo31, -1000.0, 0.0, 3.0}) {
            EXPECT_EQ(call("father", x, level, 0, "daub20").real(), 0.0) << x << " " << level;
            EXPECT_EQ(value("wavelet", x, level, twoTo31 - 1, 1000, pair), 0.0) << x << " " << level;
            EXPECT_EQ(value("dlwavelet", x, level, -twoTo31, 7, pair), 0.0) << x << " " << level;
        }
    }
    // As far as a point can be before its level or its packet takes it beyond all numbers.
    EXPECT_EQ(value("wavelet", 1.1e301, 0, 0, 0x1p18, haar()), 0.0);
    EXPECT_EQ(call("wavelet2d", NaN, inf, 0, 0, 0, 9, 9, pair).real(), 0.0);
    EXPECT_NEAR(call("father", denormal, "haar").real(), 1.0, 1e-15);
    EXPECT_EQ(call("father", -denormal, "haar").real(), 0.0);
    EXPECT_EQ(call("father", denormal, -twoTo31, 0, "haar").real(), 0.0);
}

TEST_F(Evaluation, LevelsAndShiftsOfTheirWholeRange) {
    using Point = std::array<double, 4>;
    for (const auto& [x, level, shift, expected] : {Point{twoTo31 - 1, 0, twoTo31 - 1, 1},
                                                    {-twoTo31 + 0.5, 0, -twoTo31, 1},
                                                    {-twoTo31 - 0.5, 0, -twoTo31, 0},
                                                    {1e300, 2000, 0, 0},
                                                    {1e300, twoTo31 - 1, 0, 0},
                                                    {1e300, 1000, 0, 0x1p-1000},
                                                    {-1e300, 1000, 0, 0},
                                                    {0, -1000, 0, 0x1p1000}})
        EXPECT_NEAR(call("father", x, level, shift, "haar").real(), expected, 0x1p-48 * expected) << x;
    for (const double level : {-1030.0, -5000.0, -twoTo31}) {
        EXPECT_EQ(complaint("father", 0, level, 0, "haar"), "overflow (0)");
        EXPECT_EQ(complaint("father", 1, level, 0, "haar"), "no error");
    }
    EXPECT_EQ(complaint("father2d", 0, 0, -600, 0, 0, "haar"), "overflow (0)");
}

// The workers without a wavelet use the one selected, and name their own arguments.
class UnreachedWorkers : public Evaluation {
 protected:
    Value worker(const std::string& name, const Arguments& v, const efihost::Pack& of = pack()) {
        using S = aComplex*;
        using OfLevel = aMatrix*(EfiCallContext*, S);
        using OfPoint = S(EfiCallContext*, S, S, S, S);
        using OfPlane = S(EfiCallContext*, S, S, S, S, S, S, S);
        efihost::Call call(host);
        auto* const c = call.context();
        auto* symbol = of.symbol(exportedName(name, std::string(v.size(), 'S')).c_str());
        const auto s = [&](std::size_t i) { return static_cast<S>(v[i].raw()); };
        if (v.size() == 1) return call.finish(reinterpret_cast<OfLevel*>(symbol)(c, s(0)));
        if (v.size() == 4) return call.finish(reinterpret_cast<OfPoint*>(symbol)(c, s(0), s(1), s(2), s(3)));
        return call.finish(reinterpret_cast<OfPlane*>(symbol)(c, s(0), s(1), s(2), s(3), s(4), s(5), s(6)));
    }
};

TEST_F(UnreachedWorkers, HaveNoneToEvaluateAtFirst) {
    const FreshPack fresh;
    EXPECT_EQ(complaintOf(worker("dlwavelet", {0, 0, 0, 3}, fresh)), "filter unimplemented (0)");
    EXPECT_EQ(complaintOf(worker("wavelet2d", {0, 0, 0, 0, 0, 1, 1}, fresh)), "filter unimplemented (0)");
}

TEST_F(UnreachedWorkers, EvaluateTheSelectedWavelet) {
    const Value pair = call("Bspline", 2, 4);
    for (const std::string name : {"wavelet", "dlwavelet"}) {
        const Value expected = call(name, 0.3, 1, -1, 6, pair);
        EXPECT_TRUE(same(worker(name, {0.3, 1, -1, 6}), expected));
        const Value expected2d = call(name + "2d", 0.3, 0.4, 1, -1, 0, 6, 1, pair);
        EXPECT_TRUE(same(worker(name + "2d", {0.3, 0.4, 1, -1, 0, 6, 1}), expected2d));
        const Value selected = call("mother", 0.3, "daub6");
        EXPECT_EQ(complaint(name, 0, 0, 0, 0, column({})), "filter unimplemented (5)");
        EXPECT_EQ(complaint("father", 0, "daub22"), "filter unimplemented (2)");
        EXPECT_TRUE(same(worker(name, {0.3, 0, 0, 1}), selected));
        EXPECT_EQ(complaintOf(worker(name, {0, 0.5, 0.5, -1})), "invalid level (4)");
        EXPECT_EQ(complaintOf(worker(name + "2d", {0, 0, 0, 0, twoTo31, 0, 0})), "invalid level (5)");
    }
}

TEST_F(UnreachedWorkers, ListTheBlocksOfALevel) {
    EXPECT_TRUE(same(worker("create_level2d", {2}), call("create_level", 2, 2)));
    EXPECT_EQ(complaintOf(worker("create_level2d", {std::complex(2.0, 1.0)})), "must be real (1)");
}

// Scalars that nobody holds serve the next call of a series.
TEST_F(Evaluation, AreThoseOfSingleCallsInASeries) {
    Arguments arguments = {0.0, "daub6"};
    std::vector<Value> held;
    Numbers seen;
    host.callSeries(
        pack().function("father"), 40,
        [&](std::size_t i) {
            arguments[0].setScalar(0.1 * static_cast<double>(i) - 2.0);
            return std::span<const Value>(arguments);
        },
        [&](std::size_t i, const Value& result) {
            seen.push_back(result.real());
            if (i % 3 == 0) held.push_back(result);
            return i < 30;
        });
    ASSERT_EQ(seen.size(), 31U);
    for (std::size_t i = 0; i < seen.size(); ++i) {
        EXPECT_EQ(seen[i], call("father", 0.1 * static_cast<double>(i) - 2.0, "daub6").real()) << i;
        EXPECT_EQ(held[i / 3].real(), seen[i - i % 3]) << i;
    }
}
