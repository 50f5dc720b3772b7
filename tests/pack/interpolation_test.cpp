// What packets contribute to a signal or an image between the samples: against sums written out, and
// against the inverse transforms.
#include <chrono>
#include <cmath>

#include "support/packets.h"

namespace {

// Of the user's, three taps and two.
Value own() {
    return Value::matrix(3, 2, Numbers{0.5, 0.6, 0.7, 0.3, 0.4, 0.0});
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
              const Arguments& wavelet) {
        return host.call(pack(), function, joined({x, data, level, index}, wavelet)).real();
    }
    // The sum over all shifts that may reach the point.
    double summed(double x, const Sequence& e, double level, int index, const Arguments& wavelet) {
        constexpr long reach = 50;
        const double u = std::exp2(-level) * x;
        const long middle = static_cast<long>(std::floor(u));
        const long period = static_cast<long>(e.size());
        double sum = 0.0;
        for (long m = middle - reach; m <= middle + reach; ++m) {
            const Arguments point = {u - static_cast<double>(m), 0, 0, index};
            sum += host.call(pack(), "dlwavelet", joined(point, wavelet)).real() *
                   e[static_cast<std::size_t>((m % period + period) % period)];
        }
        return std::exp2(-level / 2) * sum;
    }
    Value spline(int m, int n) { return call("Bspline", m, n); }
};

constexpr double points[] = {-7.3, -1.0, 0.0, 0.4, 2.5, 5.96875, 11.0, 17.2};

}  // namespace

// Of a level that is not whole, the packets are those of the level below.
TEST_F(Interpolation, PeriodicSumsAreThoseWrittenOut) {
    const Numbers data = noise(12);
    for (const Arguments& wavelet : {Arguments{call("daublet", 4)},
                                     {spline(2, 4)},
                                     {spline(3, 1)},
                                     {own(), row({1, -1})},
                                     {own(), row({1, -1}), row({0, 1})}}) {
        for (const double level : {0.0, 0.5, 1.0, 1.7, 2.0}) {
            const int whole = static_cast<int>(level);
            for (int index = 0; index < 1 << whole; ++index) {
                const Sequence e = periodically(data, whole, index);
                for (const double x : points) {
                    EXPECT_NEAR(at("waveterp", x, column(data), level, index, wavelet),
                                summed(x, e, level, index, wavelet), 1e-12)
                        << "level " << level << " packet " << index << " at " << x;
                }
            }
        }
    }
}

TEST_F(Interpolation, SymmetricSumsAreThoseWrittenOut) {
    for (const int n : {1, 2, 5, 7, 8, 11, 12, 13}) {
        const Numbers data = noise(static_cast<std::size_t>(n));
        for (const Value& filter : {haar(), spline(1, 3), spline(3, 5), spline(2, 2), call("bl", 1)}) {
            for (double level = 0.0; std::exp2(std::floor(level)) <= n; level += 0.75) {
                const int whole = static_cast<int>(level);
                for (int index = 0; index < 1 << whole; ++index) {
                    const Sequence e = symmetrically(data, whole, index, filter.rows() % 2 == 1);
                    for (const double x : points) {
                        EXPECT_NEAR(at("swaveterp", x, column(data), level, index, {filter}),
                                    summed(x, e, level, index, {filter}), 1e-12)
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
    const auto expectSignal = [&](const char* function, const char* inverse, int n, int level,
                                  const Value& filter) {
        const Value coefficients = signal(n);
        const Numbers whole = numbers(inverse, coefficients, basisOfLevel(1, level), filter);
        for (int x = 0; x < n; ++x) {
            double sum = 0.0;
            for (int index = 0; index < 1 << level; ++index)
                sum += at(function, x, coefficients, level, index, {filter});
            EXPECT_NEAR(sum, whole[static_cast<std::size_t>(x)], 1e-12)
                << function << " " << n << " level " << level << " at " << x;
        }
    };
    for (const Value& filter : {haar(), spline(1, 3), spline(1, 5), spline(2, 2), spline(2, 8)}) {
        for (int level = 0; level <= 3; ++level) expectSignal("waveterp", "iwpt", 24, level, filter);
        // With mirrored ends the signal is mirrored once, for the first level; of deeper ones each
        // packet is mirrored by itself, and the sum is another signal near the ends.
        for (const int n : {9, 16, 23}) {
            for (int level = 0; level <= 1; ++level) expectSignal("swaveterp", "iwpts", n, level, filter);
        }
    }
}

// With data that is a product, so is the sum.
TEST_F(Interpolation, ImagesOfProductsAreProducts) {
    const auto expectProducts = [&](const char* function, int rows, int cols, int levels,
                                    const Value& filter) {
        const Numbers a = noise(static_cast<std::size_t>(rows), 1);
        const Numbers b = noise(static_cast<std::size_t>(cols), 2);
        const Value image = strided(rows, cols, outer(a, b).values);
        const int last = (1 << levels) - 1;
        for (const auto& [nx, ny] : {std::pair(0, 0), {last, 0}, {0, last}, {last / 2, last}}) {
            for (const double x : points) {
                const double y = 3.7 - 1.25 * x;
                const double expected = at(function, x, column(a), levels, nx, {filter}) *
                                        at(function, y, column(b), levels, ny, {filter});
                const Value actual = call(function + std::string("2d"), x, y, image, levels, nx, ny, filter);
                EXPECT_NEAR(actual.real(), expected, 1e-12) << function << x;
            }
        }
    };
    for (int levels = 0; levels <= 2; ++levels) {
        for (const Value& filter : {call("daublet", 4), spline(1, 3)})
            expectProducts("waveterp", 8, 4, levels, filter);
        for (const Value& filter : {haar(), spline(2, 4), spline(3, 3)}) {
            expectProducts("swaveterp", 8, 5, levels, filter);
            expectProducts("swaveterp", 7, 6, levels, filter);
        }
    }
}

TEST_F(Interpolation, IsZeroWithoutData) {
    for (const char* function : {"waveterp", "swaveterp"})
        EXPECT_EQ(at(function, 0.5, column({}), 0, 0, {haar()}), 0.0);
    for (const char* function : {"waveterp2d", "swaveterp2d"}) {
        for (const Value& empty : {image(0, 3), image(3, 0)})
            EXPECT_EQ(call(function, 0.5, 0.5, empty, 0, 0, 0, haar()).real(), 0.0);
    }
    // Every power of two divides emptiness.
    EXPECT_EQ(at("waveterp", 0.5, column({}), 40, 0x1p31, {haar()}), 0.0);
    for (const Value& empty : {image(0, 8), image(8, 0)})
        EXPECT_EQ(call("waveterp2d", 0.5, 0.5, empty, 3, 7, 0, haar()).real(), 0.0);
}

TEST_F(Interpolation, FarPoints) {
    const Value data = signal(8);
    const Value filter = spline(2, 2);
    const auto value = [&](const char* function, double x) { return at(function, x, data, 0, 0, {filter}); };
    for (const double x : {0.25, 2.5, 6.0}) {
        for (const double far : {0x1p48, -0x1p48})
            EXPECT_NEAR(value("waveterp", x + far), value("waveterp", x), 1e-13);
        // With their mirror image, 8 samples have a period of 15 for a filter of odd length.
        EXPECT_NEAR(value("swaveterp", x + 15 * 0x1p44), value("swaveterp", x), 1e-13);
    }
    for (const double x : {0x1p51, -0x1p54, 1e18, -1e300, inf, -inf, NaN}) {
        for (const char* function : {"waveterp", "swaveterp"}) EXPECT_EQ(value(function, x), 0.0) << x;
        for (const auto& [left, right] : {std::pair(x, 0.5), {0.5, x}})
            EXPECT_EQ(call("waveterp2d", left, right, image(4, 2), 0, 0, 0, filter).real(), 0.0) << x;
    }
    // A broken index is not looked at where no term is asked for.
    EXPECT_EQ(at("swaveterp", 1e300, data, 2, 2.5, {filter}), 0.0);
    // The table's own place, at 31/32 of the offset, is none that the shifts ask for.
    for (const int offset : {-16777216, 16777216})
        EXPECT_EQ(at("waveterp", 0.5, data, 0, 0, {column({0.7, 0.7}), offset}), 0.0);
}

// Nothing has packets of every level, and is found to be nothing without walking down to them.
TEST_F(Interpolation, OfNothingAtTheDeepestLevelReturnsAtOnce) {
    const auto started = std::chrono::steady_clock::now();
    EXPECT_EQ(call("waveterp", 0.5, column({}), 4294967295.0, 0, haar()).real(), 0.0);
    EXPECT_EQ(call("waveterp2d", 0.5, 0.5, Value::matrix(0, 2, Numbers{}), 0, 0, 0, haar()).real(), 0.0);
    EXPECT_LT(std::chrono::steady_clock::now() - started, std::chrono::seconds(1));
}
