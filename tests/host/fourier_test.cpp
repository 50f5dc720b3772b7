#include <cmath>
#include <complex>
#include <numbers>
#include <vector>

#include "efi/host.h"
#include "support/pack.h"

using efihost::Call;

namespace {

using Complex = std::vector<std::complex<double>>;

// Numbers without any structure that a wrong transform might share.
Value noisyColumn(std::size_t n) {
    return Value::column(noise(n, 1), noise(n, 2));
}

// The sum itself, its angles reduced as integers and its terms added in long double.
Complex directSum(const Value& x, int sign) {
    const auto n = static_cast<std::size_t>(x.rows());
    std::vector<std::complex<long double>> circle(n);
    for (std::size_t k = 0; k < n; ++k) {
        const long double angle = 2 * std::numbers::pi_v<long double> * static_cast<long double>(k);
        circle[k] = std::polar(1.0L, static_cast<long double>(sign) * angle / static_cast<long double>(n));
    }
    Complex sums(n);
    for (std::size_t m = 0; m < n; ++m) {
        std::complex<long double> sum = 0;
        for (std::size_t k = 0; k < n; ++k)
            sum += std::complex<long double>(x.at(static_cast<int>(k), 0)) * circle[m * k % n];
        sums[m] = std::complex<double>(sum);
    }
    return sums;
}

// The error's root mean square, relative to the result's.
double errorOf(const Value& result, const Complex& expected) {
    double error = 0.0;
    double all = 0.0;
    for (std::size_t m = 0; m < expected.size(); ++m) {
        error += std::norm(result.at(static_cast<int>(m), 0) - expected[m]);
        all += std::norm(expected[m]);
    }
    return std::sqrt(error / all);
}

class Fourier : public testing::Test {
 protected:
    Value transform(const Value& column, bool inverse) {
        Call call(host);
        return call.finish((inverse ? ICFFT : CFFT)(call.context(), column.raw()));
    }

    void expectSum(std::size_t n) {
        const Value x = noisyColumn(n);
        for (const bool inverse : {false, true}) {
            const Value result = transform(x, inverse);
            ASSERT_TRUE(result.isMatrix());
            ASSERT_EQ(result.rows(), static_cast<int>(n));
            ASSERT_EQ(result.cols(), 1);
            EXPECT_LT(errorOf(result, directSum(x, inverse ? 1 : -1)), 1e-15 * (1 + std::log2(n)))
                << n << (inverse ? " inverse" : " forward");
        }
    }

    TestHost host;
};

}  // namespace

// Primes and products of large ones, powers, and mixtures.
TEST_F(Fourier, IsTheSumForEveryKindOfLength) {
    for (std::size_t n = 1; n <= 70; ++n) expectSum(n);
    for (const std::size_t n : {94u, 106u, 314u, 997u, 2809u, 1024u, 729u, 625u, 343u, 1517u, 1536u})
        expectSum(n);
}

// An impulse at place 1 becomes one turn of a circle; so the sign and the scale of long transforms
// show without a sum over all pairs. 1048573 is prime.
TEST_F(Fourier, StaysAccurateAtLengthsTooLongForTheSum) {
    for (const std::size_t n : {std::size_t{1} << 18, std::size_t{1048573}}) {
        Numbers impulse(n);
        impulse[1] = 1;
        for (const bool inverse : {false, true}) {
            const Value result = transform(Value::column(impulse), inverse);
            double worst = 0;
            for (std::size_t m = 0; m < n; ++m) {
                const double turn = static_cast<double>(m) / static_cast<double>(n);
                const auto expected = std::polar(1.0, (inverse ? 2 : -2) * std::numbers::pi * turn);
                worst = std::max(worst, std::abs(result.at(static_cast<int>(m), 0) - expected));
            }
            EXPECT_LT(worst, 1e-12) << n;
        }
    }
}

TEST_F(Fourier, TakesNullArraysAsZerosAndRefusesOtherArguments) {
    const std::vector<double> four = {1, 2, 4, 8};
    EXPECT_NEAR(std::abs(transform(Value::column(four), false).at(0, 0) - 15.0), 0.0, 1e-14);
    EXPECT_EQ(transform(Value::adopt(3, 1, nullptr), false).reals(), std::vector<double>(3));
    for (const Value& wrong :
         {Value(1), Value::matrix(2, 2, four), Value::column({}), Value::table({Value(1)})}) {
        const Value result = transform(wrong, true);
        ASSERT_TRUE(result.isError());
        EXPECT_EQ(result.argument(), 1);
    }
}

// Its own last result among its arguments; a result that nothing holds is recycled.
TEST_F(Fourier, RecyclesItsResults) {
    const Value column = noisyColumn(53);
    {
        Call call(host);
        Value kept;
        for (int i = 0; i < 100; ++i) {
            aMatrix* spectrum = CFFT(call.context(), column.raw());
            if (i == 50) kept = Value::of(spectrum);
            aMatrix* back = ICFFT(call.context(), spectrum);
            ASSERT_LT(std::abs(Value::of(back).at(7, 0) / 53.0 - column.at(7, 0)), 1e-14);
        }
        EXPECT_LE(host.leaks().values, 4);  // the column, the last two results, and the one kept
        EXPECT_EQ(kept.reals(), transform(column, false).reals());
    }
    EXPECT_EQ(host.leaks().values, 1);
}
