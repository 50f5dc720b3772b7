// What packets contribute to a signal or an image between the samples: against sums written out, and
// against the inverse transforms.
#include <cmath>
#include <limits>

#include "support/error_cases.h"
#include "support/packets.h"
#include "support/robustness.h"

namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double twoTo32 = 4294967296.0;
constexpr std::complex<double> unreal = {0.0, 1.0};

std::size_t wrapped(long m, std::size_t n) {
    const long period = static_cast<long>(n);
    return static_cast<std::size_t>(((m % period) + period) % period);
}

using Sequence = Numbers;  // one period

Sequence periodically(const Numbers& data, int level, int index) {
    const Span span = spanOf(static_cast<int>(data.size()), level, index);
    return {data.begin() + span.start, data.begin() + span.start + span.length};
}

// The packet and its mirror image: about the last coefficient or half a step after it, and about the
// first one or half a step before it, whatever keeps the symmetry of the signal that was split.
Sequence symmetrically(const Numbers& data, int level, int index, bool oddFilter) {
    Sequence e = periodically(data, level, index);
    const Numbers c = e;
    const int n = static_cast<int>(data.size());
    const bool low = ((index ^ (index >> 1)) & 1) == 0;
    const bool oddOrigin = (level == 0 ? n : spanOf(n, level - 1, index / 2).length) % 2 == 1;
    const auto mirror = [&](std::size_t skippedLast, std::size_t skippedFirst, double sign) {
        for (std::size_t i = c.size() - skippedLast; i-- > skippedFirst;) e.push_back(sign * c[i]);
    };
    if (level == 0 || low) {
        mirror(oddOrigin ? 1 : 0, oddFilter ? 1 : 0, 1.0);
    } else if (oddFilter) {
        mirror(oddOrigin ? 0 : 1, 0, 1.0);
    } else {
        if (oddOrigin) e.push_back(0.0);
        mirror(0, 0, -1.0);
    }
    return e;
}

class Interpolation : public PackTest {
 protected:
    double at(const char* function, double x, const Value& data, double level, double index,
              const Value& filter) {
        return call(function, x, data, level, index, filter).real();
    }
    double dual(double t, double index, const Value& filter) {
        return call("dlwavelet", t, 0, 0, index, filter).real();
    }
    // The sum over all shifts that may reach the point.
    double summed(double x, const Sequence& e, double level, int index, const Value& filter) {
        constexpr long reach = 50;
        const double u = std::exp2(-level) * x;
        const long middle = static_cast<long>(std::floor(u));
        double sum = 0.0;
        for (long m = middle - reach; m <= middle + reach; ++m)
            sum += dual(u - static_cast<double>(m), index, filter) * e[wrapped(m, e.size())];
        return std::exp2(-level / 2) * sum;
    }
    Value spline(int m, int n) { return call("Bspline", m, n); }
};

constexpr double points[] = {-7.3, -1.0, 0.0, 0.4, 2.5, 5.96875, 11.0, 17.2};

}  // namespace

TEST_F(Interpolation, HaarIsAStaircase) {
    const Numbers data = noise(6);
    const Value haar = call("daublet", 2);
    for (double x = -13.0; x < 13.0; x += 0.125) {
        const double expected = data[wrapped(static_cast<long>(std::floor(x)), 6)];
        EXPECT_NEAR(at("waveterp", x, column(data), 0, 0, haar), expected, 1e-14);
    }
}

TEST_F(Interpolation, PeriodicSumsAreThoseWrittenOut) {
    const Numbers data = noise(12);
    for (const Value& filter : {call("daublet", 4), call("coiflet", 12), spline(2, 4), spline(3, 1)}) {
        for (int level = 0; level <= 2; ++level) {
            for (int index = 0; index < 1 << level; ++index) {
                const Sequence e = periodically(data, level, index);
                for (const double x : points) {
                    const double here = at("waveterp", x, column(data), level, index, filter);
                    EXPECT_NEAR(here, summed(x, e, level, index, filter), 1e-12)
                        << level << " " << index << " " << x;
                    EXPECT_NEAR(at("waveterp", x + 12, column(data), level, index, filter), here, 1e-12);
                }
            }
        }
    }
    const Value own = Value::matrix(3, 2, Numbers{0.5, 0.6, 0.7, 0.3, 0.4, 0.0});
    const Value settings[] = {row({1, -1}), row({0, 1})};
    const auto term = [&](double t) {
        return call("dlwavelet", t, 0, 0, 3, own, settings[0], settings[1]).real();
    };
    const Sequence e = periodically(data, 2, 3);
    double expected = 0.0;
    for (int m = -50; m < 50; ++m) expected += 0.5 * term(1.3 / 4 - m) * e[wrapped(m, 3)];
    EXPECT_NEAR(call("waveterp", 1.3, column(data), 2, 3, own, settings[0], settings[1]).real(), expected,
                1e-12);
}

TEST_F(Interpolation, SymmetricSumsAreThoseWrittenOut) {
    for (const int n : {1, 2, 5, 7, 8, 11, 12, 13}) {
        const Numbers data = noise(static_cast<std::size_t>(n));
        for (const Value& filter :
             {call("daublet", 2), spline(1, 3), spline(3, 5), spline(2, 2), call("bl", 1)}) {
            const bool oddFilter = filter.rows() % 2 == 1;
            for (int level = 0; 1 << level <= n; ++level) {
                for (int index = 0; index < 1 << level; ++index) {
                    Sequence e = symmetrically(data, level, index, oddFilter);
                    for (const double x : points) {
                        EXPECT_NEAR(at("swaveterp", x, column(data), level, index, filter),
                                    summed(x, e, level, index, filter), 1e-12)
                            << n << " samples, level " << level << " packet " << index << " at " << x;
                    }
                }
            }
            if (HasFailure()) return;
        }
    }
}

// The dual functions of these pairs are boxes and triangles, which the table has exactly: at the
// integers, the packets of a basis are together the signal.
TEST_F(Interpolation, PacketsAreTogetherTheSignal) {
    const auto expectSignal = [&](const char* function, const Value& coefficients, const Tiling& packets,
                                  const Numbers& signal, const Value& filter) {
        for (std::size_t x = 0; x < signal.size(); ++x) {
            double sum = 0.0;
            for (const TestPacket& packet : packets)
                sum += at(function, double(x), coefficients, packet.level, packet.row, filter);
            EXPECT_NEAR(sum, signal[x], 1e-12)
                << function << " " << signal.size() << " level " << packets[0].level << " at " << x;
        }
    };
    for (const Value& filter : {call("daublet", 2), spline(1, 3), spline(1, 5), spline(2, 2), spline(2, 8)}) {
        const Value periodic = column(noise(24, 5));
        for (int level = 0; level <= 3; ++level) {
            const Tiling packets = wholeLevel(1, level);
            expectSignal("waveterp", periodic, packets,
                         numbers("iwpt", periodic, basisOf(1, packets), filter), filter);
        }
        // With mirrored ends the signal is mirrored once, for the first level; of deeper ones each
        // packet is mirrored by itself, and the sum is another signal near the ends.
        for (const int n : {9, 16, 23}) {
            const Value coefficients = column(noise(static_cast<std::size_t>(n), 5));
            for (int level = 0; level <= 1; ++level) {
                const Tiling packets = wholeLevel(1, level);
                expectSignal("swaveterp", coefficients, packets,
                             numbers("iwpts", coefficients, basisOf(1, packets), filter), filter);
            }
        }
    }
}

// The packets of the upper half of a level are made of the same samples of the tabulated function as
// the signal itself: with coefficients only there, the sum is that of the signal, at any point and
// for any filter. For packet 0 and the other lower ones that holds up to the table's shift.
TEST_F(Interpolation, UpperPacketsAreTogetherTheSignalAtAnyPoint) {
    const auto expectSignal = [&](const char* function, const char* inverse, const Value& filter, int n,
                                  int level) {
        Numbers values = noise(static_cast<std::size_t>(n), 6);
        std::fill_n(values.begin(), spanOf(n, 1, 0).length, 0.0);
        const Value coefficients = column(values);
        const Value signal = call(inverse, coefficients, call("create_level", level, 1), filter);
        for (const double x : points) {
            double sum = 0.0;
            for (int index = 1 << level >> 1; index < 1 << level; ++index)
                sum += at(function, x, coefficients, level, index, filter);
            EXPECT_NEAR(sum, at(function, x, signal, 0, 0, filter), 1e-11)
                << function << " " << n << " level " << level << " at " << x;
        }
    };
    for (const Value& filter :
         {call("daublet", 6), call("symmlet", 8), call("coiflet", 6), spline(3, 3), spline(2, 4)}) {
        for (int level = 1; level <= 3; ++level) expectSignal("waveterp", "iwpt", filter, 24, level);
    }
    // With mirrored ends at level 1; as level 0, the signal of even length is not mirrored as the
    // transform mirrors it for a filter of odd length.
    for (const Value& filter : {spline(3, 1), spline(3, 9), spline(2, 6), spline(1, 5)}) {
        for (const int n : {10, 16, 21, 23}) {
            const bool oddFilter = filter.rows() % 2 == 1;
            if (n % 2 == 1 || !oddFilter) expectSignal("swaveterp", "iwpts", filter, n, 1);
        }
    }
}

TEST_F(Interpolation, LevelsThatAreNotWhole) {
    const Numbers data = noise(12);
    const Value filter = spline(2, 2);
    for (const double x : points) {
        EXPECT_NEAR(at("waveterp", x, column(data), 1.7, 1, filter),
                    summed(x, periodically(data, 1, 1), 1.7, 1, filter), 1e-12);
        EXPECT_NEAR(at("swaveterp", x, column(data), 2.25, 3, filter),
                    summed(x, symmetrically(data, 2, 3, true), 2.25, 3, filter), 1e-12);
        EXPECT_NEAR(at("waveterp", x, column(data), 0.5, 0, filter), summed(x, data, 0.5, 0, filter), 1e-12);
    }
    EXPECT_EQ(at("swaveterp", 1e300, column(data), 2, 2.5, filter), 0.0);  // no term is asked for
}

// With data that is a product, so is the sum.
TEST_F(Interpolation, ImagesOfProductsAreProducts) {
    const auto expectProducts = [&](const std::string& function, int rows, int cols, int levels,
                                    const Value& filter) {
        const Numbers a = noise(static_cast<std::size_t>(rows), 1);
        const Numbers b = noise(static_cast<std::size_t>(cols), 2);
        Numbers values;
        for (const double right : b) {
            for (const double left : a) values.push_back(left * right);
        }
        const Value image = strided(rows, cols, values);
        const int last = (1 << levels) - 1;
        for (const auto& [nx, ny] :
             {std::pair(0, 0), {last, 0}, {0, last}, {last / 2, last}, {last, last - 1}}) {
            if (ny < 0) continue;
            for (const double x : points) {
                const double y = 3.7 - 1.25 * x;
                const double expected = at(function.c_str(), x, column(a), levels, nx, filter) *
                                        at(function.c_str(), y, column(b), levels, ny, filter);
                EXPECT_NEAR(call(function + "2d", x, y, image, levels, nx, ny, filter).real(), expected,
                            1e-12)
                    << function << x;
            }
        }
    };
    for (int levels = 0; levels <= 2; ++levels) {
        for (const Value& filter : {call("daublet", 4), spline(1, 3)})
            expectProducts("waveterp", 8, 4, levels, filter);
        for (const Value& filter : {call("daublet", 2), spline(2, 4), spline(3, 3)}) {
            expectProducts("swaveterp", 8, 5, levels, filter);
            expectProducts("swaveterp", 7, 6, levels, filter);
        }
    }
}

TEST_F(Interpolation, BlocksOfALevelAreTogetherTheImage) {
    const auto expectImage = [&](const std::string& function, const char* inverse, int rows, int cols,
                                 int level) {
        const Value filter = spline(2, 2);
        const Value coefficients = noisyGrid(rows, cols).value();
        const Value image = call(inverse, coefficients, basisOf(2, wholeLevel(2, level)), filter);
        for (int x = 0; x < rows; ++x) {
            for (int y = 0; y < cols; ++y) {
                double sum = 0.0;
                for (const auto& [j, nx, ny] : wholeLevel(2, level))
                    sum += call(function, x, y, coefficients, j, nx, ny, filter).real();
                EXPECT_NEAR(sum, image.at(x, y).real(), 1e-12)
                    << function << " level " << level << " at " << x << ", " << y;
            }
        }
    };
    for (int level = 0; level <= 2; ++level) expectImage("waveterp2d", "iwpt", 8, 4, level);
    for (int level = 0; level <= 1; ++level) expectImage("swaveterp2d", "iwpts", 7, 5, level);
}

TEST_F(Interpolation, OmittedArgumentsAndEmptyData) {
    const Value own = Value::matrix(3, 2, Numbers{0.5, 0.6, 0.7, 0.3, 0.4, 0.0});
    const Value data = column(noise(8));
    const Value image = Value::matrix(4, 2, noise(8));
    EXPECT_TRUE(same(call("waveterp", 1.3, data, 1, 1, own, row({1, -1})),
                     call("waveterp", 1.3, data, 1, 1, own, row({1, -1}), row({0, 0}))));
    EXPECT_TRUE(same(call("waveterp2d", 1.3, 0.2, image, 1, 1, 0, own, row({1, -1})),
                     call("waveterp2d", 1.3, 0.2, image, 1, 1, 0, own, row({1, -1}), row({0, 0}))));
    const Value haar = call("daublet", 2);
    EXPECT_TRUE(same(call("waveterp", 1.3, data, 1, 1, haar), call("waveterp", 1.3, data, 1, 1, haar, 0)));
    for (const char* function : {"waveterp", "swaveterp"}) {
        EXPECT_EQ(at(function, 0.5, column({}), 0, 0, haar), 0.0);
        EXPECT_EQ(at(function, 0.5, Value::adopt(4, 1, nullptr), 2, 1, haar), 0.0);
    }
    for (const char* function : {"waveterp2d", "swaveterp2d"}) {
        EXPECT_EQ(call(function, 0.5, 0.5, Value::matrix(0, 3, Numbers{}), 0, 0, 0, haar).real(), 0.0);
        EXPECT_EQ(call(function, 0.5, 0.5, Value::matrix(3, 0, Numbers{}), 0, 0, 0, haar).real(), 0.0);
        EXPECT_EQ(call(function, 0.5, 0.5, Value::adopt(4, 4, nullptr), 1, 1, 0, haar).real(), 0.0);
    }
}

TEST_F(Interpolation, FarPoints) {
    const Numbers data = noise(8);
    const Value filter = spline(2, 2);
    constexpr double far = 0x1p48;
    for (const double x : {0.25, 2.5, 6.0}) {
        EXPECT_NEAR(at("waveterp", x + far, column(data), 1, 1, filter),
                    at("waveterp", x, column(data), 1, 1, filter), 1e-13);
        EXPECT_NEAR(at("waveterp", x - far, column(data), 0, 0, filter),
                    at("waveterp", x, column(data), 0, 0, filter), 1e-13);
        // With their mirror image, 8 samples have a period of 15 for a filter of odd length.
        EXPECT_NEAR(at("swaveterp", x + 15 * 0x1p44, column(data), 0, 0, filter),
                    at("swaveterp", x, column(data), 0, 0, filter), 1e-13);
    }
    const Value image = Value::matrix(4, 2, data);
    for (const double x : {0x1p51, -0x1p54, 1e18, -1e300, inf, -inf, NaN}) {
        for (const char* function : {"waveterp", "swaveterp"})
            EXPECT_EQ(at(function, x, column(data), 0, 0, filter), 0.0) << x;
        for (const char* function : {"waveterp2d", "swaveterp2d"}) {
            EXPECT_EQ(call(function, x, 0.5, image, 0, 0, 0, filter).real(), 0.0) << x;
            EXPECT_EQ(call(function, 0.5, x, image, 0, 0, 0, filter).real(), 0.0) << x;
        }
    }
    const Value own = column({0.7, 0.7});
    for (const int offset : {-16777216, 16777216}) {
        // The table's own place, at 31/32 of the offset, is none that the shifts ask for.
        EXPECT_EQ(call("waveterp", 0.5, column(data), 0, 0, own, offset).real(), 0.0);
        EXPECT_EQ(call("waveterp", 1e18, column(data), 1, 1, own, offset).real(), 0.0);
    }
}

TEST(InterpolationRobustness, SurvivesEveryTrouble) {
    using Arguments = std::vector<Value>;
    // Filters of the user's that the pack does not know yet: 3 taps from 0 to 2, and as many for the
    // high-pass filter, from -1 to 1.
    const auto filter = [](int variant) { return column({0.5, 0.5 + 1e-3 * variant, 0.25}); };
    const char* refused = "filter unimplemented (5)";
    const char* refused2d = "filter unimplemented (7)";
    const Value data = column(noise(8));
    const Value image = Value::matrix(4, 8, noise(32));
    // Shifts 4 and 5 reach 5.5; shifts 2 and 3 reach 5.5 / 2 from the support of [-1/2, 3/2].
    expectRobust({"waveterp", [=](int v) { return Arguments{5.5, data, 0, 0, filter(v)}; }, 2, refused});
    expectRobust(
        {"waveterp", [=](int v) { return Arguments{5.5, data, 1, 1, filter(v), 0}; }, 2 * (1 + 1), refused});
    expectRobust({"waveterp", [=](int v) { return Arguments{5.5, data, 1, 1, filter(v), 0, 1}; }, 2 * (1 + 1),
                  refused});
    // The triangle reaches from -1 to 1, the wavelet of the pair from -1 to 2.
    const Value known = Value::matrix(
        5, 2,
        Numbers{-0.1767766952966369, 0.3535533905932738, 1.0606601717798212, 0.3535533905932738,
                -0.1767766952966369, 0.3535533905932738, 0.7071067811865476, 0.3535533905932738, 0, 0});
    expectRobust({"swaveterp", [=](int) { return Arguments{5.5, data, 0, 0, known}; }, 2});
    expectRobust({"swaveterp", [=](int) { return Arguments{5.5, data, 1, 1, known}; }, 3 * (1 + 1)});
    expectRobust(
        {"waveterp2d", [=](int v) { return Arguments{1.5, 5.5, image, 0, 0, 0, filter(v)}; }, 0, refused2d});
    expectRobust({"waveterp2d", [=](int v) { return Arguments{1.5, 5.5, image, 1, 0, 1, filter(v), 0}; },
                  2 * 2 * 1, refused2d});
    expectRobust({"waveterp2d", [=](int v) { return Arguments{1.5, 5.5, image, 1, 1, 1, filter(v), 0, 1}; },
                  2 * 2 * 2, refused2d});
    expectRobust({"swaveterp2d", [=](int) { return Arguments{1.5, 5.5, image, 1, 1, 0, known}; }, 3 * 2 * 1});
}

namespace {

Value haar() {
    return column({0.7071067811865475, 0.7071067811865475});
}
Value daublet4() {
    return column({0.48296291314453414, 0.83651630373780790, 0.22414386804201339, -0.12940952255126037});
}

using Table = std::vector<ErrorCase>;

// Wrong wavelets, besides arguments of which the scalars are all wrong.
void addWavelets(Table& table, const char* f, std::vector<Value> before, bool settings) {
    const int position = static_cast<int>(before.size()) + 1;
    const auto add = [&](const std::vector<Value>& wavelet, const char* message, int index) {
        std::vector<Value> arguments = before;
        arguments.insert(arguments.end(), wavelet.begin(), wavelet.end());
        table.push_back({f, arguments, message, index});
    };
    const Value bad = Value::column(Numbers{1, 2}, Numbers{0, 1});
    add({bad}, "must be real array", position);
    add({column({})}, "filter unimplemented", position);
    add({column({1, NaN})}, "filter unimplemented", position);
    add({1}, "must be array", position);
    if (!settings) return;
    add({bad, bad, bad}, "must be real array", position);
    add({haar(), bad}, "must be real array", position + 1);
    add({haar(), unreal, bad}, "must be real array", position + 1);
    add({column({}), 0, unreal}, "must be real array", position + 2);
    add({haar(), 0.5}, "filter unimplemented", position);
    add({haar(), 0, 2}, "filter unimplemented", position);
    add({haar(), row({0, 0}), row({0, 0})}, "filter unimplemented", position);
    add({haar(), "0"}, "EfiMustBeScalarOrArray", position + 1);
    add({haar(), 0, 0, 0}, "Wrong number of Arguments", 0);
}

void addSignalScalars(Table& table, const char* f, const std::vector<Value>& wavelet) {
    const auto add = [&](std::vector<Value> arguments, const char* message, int index) {
        arguments.insert(arguments.end(), wavelet.begin(), wavelet.end());
        table.push_back({f, std::move(arguments), message, index});
    };
    const Value bad = Value::column(Numbers{1, 2}, Numbers{0, 1});
    const Value twelve = column(noise(12));
    add({unreal, bad, unreal, unreal}, "must be real", 1);
    add({0, bad, unreal, unreal}, "must be real vector", 2);
    add({0, Value::matrix(2, 2, noise(4)), unreal, unreal}, "must be vector", 2);
    add({0, Value::table({1, column({1, 2})}), unreal, unreal}, "must be real vector", 2);
    add({0, twelve, unreal, unreal}, "must be real", 3);
    add({0, twelve, -1, unreal}, "must be real", 4);
}

void addPeriodicSignal(Table& table, const char* f, const std::vector<Value>& wavelet) {
    const auto add = [&](double x, int n, double level, double index, const char* message, int argument) {
        std::vector<Value> arguments = {x, column(noise(static_cast<std::size_t>(n))), level, index};
        arguments.insert(arguments.end(), wavelet.begin(), wavelet.end());
        table.push_back({f, std::move(arguments), message, argument});
    };
    for (const double level : {-1.0, -0.5, twoTo32, NaN, inf, -inf})
        add(inf, 12, level, 0.5, "invalid level", 3);
    for (const double index : {0.5, NaN, -1.5}) add(0, 12, 3, index, "must be integer", 4);
    for (const double index : {-1.0, twoTo32, inf}) add(NaN, 12, 3, index, "invalid level", 4);
    for (const double level : {3.0, 3.9, 31.0, 32.0, 63.0, 64.0, 4294967295.0})
        add(0, 12, level, 4294967295.0, "invalid level", 2);
    add(0, 12, 2, 4, "invalid level", 4);
    add(0, 12, 1.7, 2, "invalid level", 4);
    add(0, 0, 0, 1, "invalid level", 4);
    add(0, 0, 0, 4294967295.0, "invalid level", 4);
}

void addSymmetricSignal(Table& table) {
    const char* f = "swaveterp";
    const auto add = [&](int n, double level, double index, const Value& filter, const char* message,
                         int argument) {
        table.push_back(
            {f, {0, column(noise(static_cast<std::size_t>(n))), level, index, filter}, message, argument});
    };
    add(12, -1, -1, daublet4(), "not a symmetric wavelet", 5);
    table.push_back({f, {0, column({1}), 0, unreal, daublet4()}, "must be real", 4});
    for (const double level : {-1.0, -0.5, twoTo32, NaN, inf}) add(12, level, -1, haar(), "invalid level", 3);
    for (const double index : {-1.0, -0.5, twoTo32, NaN, inf})
        add(12, 4, index, haar(), "invalid packet index", 4);
    for (const double level : {4.0, 31.0, 32.0, 64.0, 4294967295.0})
        add(12, level, 4294967295.0, haar(), "invalid level", 3);
    add(0, 1, 0, haar(), "invalid level", 3);
    add(12, 3, 8, haar(), "invalid level", 4);
    add(12, 1.7, 2.5, haar(), "invalid level", 4);
    add(12, 3, 2.5, haar(), "must be integer", 4);
    add(12, 3, 7.5, haar(), "must be integer", 4);
}

void addImages(Table& table, const char* f, bool symmetric, const std::vector<Value>& wavelet) {
    const auto add = [&](std::vector<Value> arguments, const char* message, int index) {
        arguments.insert(arguments.end(), wavelet.begin(), wavelet.end());
        table.push_back({f, std::move(arguments), message, index});
    };
    const Value bad = Value::matrix(2, 2, Numbers(4), Numbers{0, 0, 0, 1});
    const Value image = Value::matrix(8, 4, noise(32));
    const Value signal = column(noise(8));
    add({unreal, unreal, bad, unreal, unreal, unreal}, "must be real", 1);
    add({0, unreal, bad, unreal, unreal, unreal}, "must be real", 2);
    add({0, 0, bad, unreal, unreal, unreal}, "must be real array", 3);
    add({0, 0, image, unreal, unreal, unreal}, "must be real", 4);
    add({0, 0, image, 0.5, unreal, unreal}, "must be real", 5);
    add({0, 0, signal, 0.5, 0.5, unreal}, "must be real", 6);
    for (const double wrong : {0.5, NaN, -0.5}) {
        add({0, 0, signal, wrong, wrong, 0.5}, "must be integer", 4);
        add({0, 0, signal, 9, wrong, 0.5}, "must be integer", 5);
        add({0, 0, signal, 9, 9, wrong}, "must be integer", 6);
    }
    for (const double wrong : {-1.0, twoTo32, inf}) {
        add({0, 0, signal, wrong, wrong, 0.5}, "invalid level", 4);
        add({0, 0, signal, 9, wrong, 0.5}, "invalid level", 5);
        add({0, 0, signal, 9, 9, wrong}, "invalid level", 6);
    }
    for (const double level : {4.0, 32.0, 64.0, 4294967295.0}) {
        add({0, 0, image, level, 4294967295.0, 9}, "invalid level", 4);
        add({0, 0, signal, level, 9, 9}, "invalid level", 4);
    }
    add({0, 0, image, 3, 9, 9}, "invalid level", 4);
    add({0, 0, Value::matrix(symmetric ? 3 : 6, 4, noise(symmetric ? 12 : 24)), 2, 9, 9}, "invalid level", 4);
    add({0, 0, signal, 3, 8, 9}, "must be matrix", 3);
    add({0, 0, signal, 0, 0, 0}, "must be matrix", 3);
    add({0, 0, image, 2, 4, 4}, "invalid packet index", 5);
    add({0, 0, image, 2, 4294967295.0, 4}, "invalid packet index", 5);
    add({0, 0, image, 2, 3, 4}, "invalid packet index", 6);
}

Table interpolationErrors() {
    Table table;
    const std::vector<Value> forms[] = {{haar()}, {haar(), 0}, {haar(), 0, 1}};
    addWavelets(table, "waveterp", {unreal, column({1}), unreal, unreal}, true);
    addWavelets(table, "swaveterp", {unreal, column({1}), unreal, unreal}, false);
    addWavelets(table, "waveterp2d", {unreal, unreal, column({1}), unreal, unreal, unreal}, true);
    addWavelets(table, "swaveterp2d", {unreal, unreal, column({1}), unreal, unreal, unreal}, false);
    for (const auto& form : forms) {
        addSignalScalars(table, "waveterp", form);
        addPeriodicSignal(table, "waveterp", form);
        addImages(table, "waveterp2d", false, form);
    }
    addSignalScalars(table, "swaveterp", {daublet4()});
    addSymmetricSignal(table);
    addImages(table, "swaveterp2d", true, {haar()});
    const Value one = column({1});
    table.push_back({"swaveterp2d", {0, 0, one, 0.5, 0.5, unreal, daublet4()}, "must be real", 6});
    table.push_back({"swaveterp2d", {0, 0, one, 0.5, 0.5, 0.5, daublet4()}, "not a symmetric wavelet", 7});
    return cases(std::move(table));
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(Interpolation, Errors, testing::ValuesIn(interpolationErrors()), nameOfError);
