// The tabulated orthonormal filters: what the published digits promise, and how they are used.
#include <cmath>
#include <numeric>

#include "support/pack.h"

namespace {

constexpr double rootOfTwo = 1.4142135623730951;
constexpr double rounding = 4e-16;

// For each filter, how far its published digits are from the exact ones at most, and how far they
// are from orthonormality (measured in 100-digit arithmetic).
struct Tabulated {
    const char* family;
    int taps;
    double difference;
    double defect;
};

const Tabulated tabulated[] = {
    {"daublet", 2, 1e-16, 4e-16},      {"daublet", 4, 2.5e-16, 6.6e-16},  {"daublet", 6, 2.5e-16, 6.6e-16},
    {"daublet", 8, 2.5e-16, 6.6e-16},  {"daublet", 10, 5.7e-16, 1.5e-15}, {"daublet", 12, 5.7e-16, 1.5e-15},
    {"daublet", 14, 4.4e-14, 1.1e-13}, {"daublet", 16, 4.4e-14, 1.1e-13}, {"daublet", 18, 4.4e-14, 1.1e-13},
    {"daublet", 20, 1.7e-13, 5.5e-13}, {"symmlet", 4, 2.5e-16, 6.6e-16},  {"symmlet", 6, 2.5e-16, 6.6e-16},
    {"symmlet", 8, 4.6e-13, 5.6e-13},  {"symmlet", 10, 5.3e-13, 5.1e-13}, {"symmlet", 12, 4.6e-13, 5.6e-13},
    {"symmlet", 14, 5.3e-13, 5.1e-13}, {"symmlet", 16, 1.7e-12, 2.3e-13}, {"symmlet", 18, 1.5e-12, 2.5e-12},
    {"symmlet", 20, 2.8e-10, 4.2e-10}, {"coiflet", 6, 4.6e-13, 9.2e-13},  {"coiflet", 12, 3.5e-12, 2.9e-12},
    {"coiflet", 18, 3.5e-12, 2.9e-12}, {"coiflet", 24, 1.7e-8, 2.0e-11},  {"coiflet", 30, 7.8e-6, 4.2e-9},
};

class Filters : public PackTest {
 protected:
    Numbers filter(const Tabulated& entry) { return numbers(entry.family, entry.taps); }

    // The sum of weight(k) h[k], which should vanish, in units of what the digits allow.
    template <class Weight>
    static double excess(const Tabulated& entry, const Numbers& h, Weight weight) {
        double sum = 0.0;
        double allowed = 0.0;
        for (std::size_t k = 0; k < h.size(); ++k) {
            const double w = weight(static_cast<int>(k));
            sum += w * h[k];
            allowed += std::fabs(w) * (rootOfTwo * entry.difference + rounding * std::fabs(h[k]));
        }
        return std::fabs(sum) / allowed;
    }
};

}  // namespace

TEST_F(Filters, AreOrthonormal) {
    for (const Tabulated& entry : tabulated) {
        SCOPED_TRACE(entry.family + std::to_string(entry.taps));
        const Value column = call(entry.family, entry.taps);
        EXPECT_EQ(column.rows(), entry.taps);
        EXPECT_EQ(column.cols(), 1);
        EXPECT_EQ(column.matrix().im, nullptr);
        const Numbers h = column.reals();
        for (std::size_t shift = 0; shift < h.size(); shift += 2) {
            double product = shift == 0 ? -1.0 : 0.0;
            for (std::size_t k = shift; k < h.size(); ++k) product += h[k] * h[k - shift];
            EXPECT_NEAR(product, 0.0, 1.05 * entry.defect + rounding);
        }
        EXPECT_NEAR(std::accumulate(h.begin(), h.end(), 0.0), rootOfTwo,
                    entry.taps * (entry.difference + rounding));
    }
}

TEST_F(Filters, HaveTheirVanishingMoments) {
    for (const Tabulated& entry : tabulated) {
        SCOPED_TRACE(entry.family + std::to_string(entry.taps));
        const Numbers h = filter(entry);
        const bool coiflet = entry.family == std::string("coiflet");
        const int moments = coiflet ? entry.taps / 3 : entry.taps / 2;
        for (int m = 0; m < moments; ++m) {
            const auto alternating = [&](int k) {
                return (k % 2 == 0 ? 1 : -1) * std::pow(k - entry.taps / 2.0, m);
            };
            EXPECT_LE(excess(entry, h, alternating), 1.0) << "moment " << m;
            // A coiflet's scaling function has as many, about the place where it starts.
            const auto fromStart = [&](int k) { return std::pow(k - entry.taps / 3.0, m); };
            if (coiflet && m > 0) {
                EXPECT_LE(excess(entry, h, fromStart), 1.0) << "moment " << m;
            }
        }
    }
}

TEST_F(Filters, HaveThePublishedDigits) {
    const auto expectStart = [](const Numbers& h, const Numbers& start) {
        EXPECT_EQ(Numbers(h.begin(), h.begin() + static_cast<std::ptrdiff_t>(start.size())), start);
    };
    EXPECT_EQ(numbers("daublet", 2), Numbers(2, 1.0 / rootOfTwo));
    EXPECT_EQ(numbers("daublet", 4),
              (Numbers{0.4829629131445341, 0.8365163037378077, 0.2241438680420134, -0.1294095225512603}));
    expectStart(numbers("daublet", 6), {0.3326705529500825, 0.8068915093110924, 0.4598775021184914});
    EXPECT_EQ(numbers("daublet", 6).back(), 0.0352262918857095);
    expectStart(numbers("daublet", 20), {0.0266700579005473, 0.1881768000776347, 0.5272011889315757});
    EXPECT_EQ(numbers("daublet", 20).back(), -1.32642028945e-05);
    EXPECT_EQ(numbers("symmlet", 4), numbers("daublet", 4));
    EXPECT_EQ(numbers("symmlet", 6), numbers("daublet", 6));

    Numbers symmlet8 = {0.045570345896, -0.017824701442, -0.140317624179, 0.421234534204,
                        1.136658243408, 0.703739068656,  -0.041910965125, -0.107148901418};
    for (double& tap : symmlet8) tap /= rootOfTwo;
    EXPECT_EQ(numbers("symmlet", 8), symmlet8);
    expectStart(numbers("symmlet", 10),
                {0.027632152958 / rootOfTwo, -0.029842499869 / rootOfTwo, -0.247951362613 / rootOfTwo});

    Numbers coiflet6 = {-0.051429728471, 0.238929728471,  0.602859456942,
                        0.272140543058,  -0.051429728471, -0.011070271529};
    for (double& tap : coiflet6) tap *= rootOfTwo;
    EXPECT_EQ(numbers("coiflet", 6), coiflet6);
    const Numbers coiflet30 = numbers("coiflet", 30);
    EXPECT_EQ(
        Numbers(coiflet30.end() - 4, coiflet30.end()),
        (Numbers{2.6408e-6 * rootOfTwo, 1.4593e-6 * rootOfTwo, -1.184e-7 * rootOfTwo, -6.73e-8 * rootOfTwo}));
}

// The boundary filters belong to one of the two orders; it puts the centre of mass right of the
// middle for these.
TEST_F(Filters, StandInTheRightOrder) {
    for (const int taps : {8, 10, 12, 16, 18, 20}) {
        const Numbers h = numbers("symmlet", taps);
        double centre = 0.0;
        for (std::size_t k = 0; k < h.size(); ++k) centre += static_cast<double>(k) * h[k] / rootOfTwo;
        EXPECT_GT(centre, (taps - 1) / 2.0) << taps;
    }
}
