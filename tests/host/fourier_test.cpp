#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <limits>
#include <numbers>
#include <vector>

#include "efi/host.h"
#include "support/test_host.h"

using efihost::Call;
using efihost::Value;

namespace {

using Numbers = std::vector<std::complex<double>>;

// Numbers without any structure that a wrong transform might share.
Numbers noise(std::size_t n) {
    Numbers x(n);
    std::uint64_t state = 88172645463325252u;
    const auto next = [&] {
        state ^= state << 13;
        state ^= state >> 7;
        state ^= state << 17;
        return static_cast<double>(state >> 11) * 0x1p-52 - 1.0;
    };
    for (auto& number : x) number = {next(), next()};
    return x;
}

// The sum itself, its angles reduced as integers and its terms added in long double.
Numbers directSum(const Numbers& x, int sign) {
    const std::size_t n = x.size();
    std::vector<std::complex<long double>> circle(n);
    for (std::size_t k = 0; k < n; ++k) {
        const long double angle = 2 * std::numbers::pi_v<long double> * static_cast<long double>(k);
        circle[k] = std::polar(1.0L, static_cast<long double>(sign) * angle / static_cast<long double>(n));
    }
    Numbers sums(n);
    for (std::size_t m = 0; m < n; ++m) {
        std::complex<long double> sum = 0;
        for (std::size_t k = 0; k < n; ++k) sum += std::complex<long double>(x[k]) * circle[m * k % n];
        sums[m] = std::complex<double>(sum);
    }
    return sums;
}

Value columnOf(const Numbers& x) {
    std::vector<double> re, im;
    for (const auto& number : x) {
        re.push_back(number.real());
        im.push_back(number.imag());
    }
    return Value::column(re, im);
}

double rootMeanSquare(const Numbers& x) {
    double sum = 0;
    for (const auto& number : x) sum += std::norm(number);
    return std::sqrt(sum / static_cast<double>(x.size()));
}

// The error's root mean square, relative to the result's.
double errorOf(const Value& result, const Numbers& expected) {
    Numbers difference(expected.size());
    for (std::size_t m = 0; m < expected.size(); ++m) {
        difference[m] = result.at(static_cast<int>(m), 0) - expected[m];
    }
    return rootMeanSquare(difference) / rootMeanSquare(expected);
}

class Fourier : public testing::Test {
 protected:
    Value transform(const Value& column, bool inverse) {
        Call call(host);
        return call.finish((inverse ? ICFFT : CFFT)(call.context(), column.raw()));
    }

    void expectSum(std::size_t n) {
        const Numbers x = noise(n);
        for (const bool inverse : {false, true}) {
            const Value result = transform(columnOf(x), inverse);
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

TEST_F(Fourier, IsTheSumForEveryKindOfLength) {
    for (std::size_t n = 1; n <= 70; ++n) expectSum(n);
    // Primes and products of large ones, powers, and mixtures.
    for (const std::size_t n : {94u, 106u, 997u, 1009u, 2809u, 1024u, 729u, 625u, 343u, 1517u}) expectSum(n);
    for (const std::size_t n : {12u, 24u, 96u, 384u, 1536u}) expectSum(n);
}

// An impulse at place 1 becomes one turn of a circle; so the sign and the scale of long transforms
// show without a sum over all pairs. 1048573 is prime.
TEST_F(Fourier, StaysAccurateAtLengthsTooLongForTheSum) {
    for (const std::size_t n : {std::size_t{1} << 18, std::size_t{1048573}}) {
        Numbers impulse(n);
        impulse[1] = 1;
        for (const bool inverse : {false, true}) {
            const Value result = transform(columnOf(impulse), inverse);
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

TEST_F(Fourier, TakesNullArraysAsZeros) {
    const Value real = Value::column(std::vector<double>{1, 2, 4});
    EXPECT_NEAR(std::abs(transform(real, false).at(0, 0) - 7.0), 0.0, 1e-15);
    EXPECT_EQ(transform(Value::adopt(3, 1, nullptr), false).reals(), std::vector<double>(3));
}

TEST_F(Fourier, AnswersWithAnErrorValueForOtherArguments) {
    const std::vector<double> four(4);
    for (const Value& wrong :
         {Value(1), Value::matrix(2, 2, four), Value::column({}), Value::table({Value(1)})}) {
        const Value result = transform(wrong, true);
        ASSERT_TRUE(result.isError());
        EXPECT_EQ(result.argument(), 1);
    }
}

TEST_F(Fourier, TransformsItsOwnLastResult) {
    const Numbers x = noise(53);
    Call call(host);
    aMatrix* spectrum = CFFT(call.context(), columnOf(x).raw());
    const Value back = call.finish(ICFFT(call.context(), spectrum));
    Numbers expected = x;
    for (auto& number : expected) number *= 53.0;
    EXPECT_LT(errorOf(back, expected), 1e-14);
}

TEST_F(Fourier, RecyclesItsResults) {
    const Value column = columnOf(noise(16));
    {
        Call call(host);
        Value kept;
        for (int i = 0; i < 100; ++i) {
            aMatrix* result = CFFT(call.context(), column.raw());
            if (i == 50) kept = Value::of(result);
        }
        EXPECT_LE(host.leaks().values, 3);  // the column, the last result, and the one kept
        EXPECT_EQ(kept.rows(), 16);
    }
    EXPECT_EQ(host.leaks().values, 1);
}
