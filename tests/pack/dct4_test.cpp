// The arithmetic of local cosines: the transform against its sum, folding as a matrix.
#include "cosine/dct4.h"

#include <cmath>
#include <complex>
#include <list>
#include <numbers>
#include <numeric>

#include "cosine/folding.h"
#include "efi/host.h"
#include "support/pack.h"

using namespace undula;

namespace {

// cos(pi (i + 1/2) (k + 1/2) / n), the angle reduced as an integer.
long double cosine(std::uint64_t i, std::uint64_t k, std::uint64_t n) {
    const std::uint64_t eighths = (2 * i + 1) * (2 * k + 1) % (8 * n);
    return std::cos(std::numbers::pi_v<long double> * static_cast<long double>(eighths) /
                    static_cast<long double>(4 * n));
}

Numbers directSum(const Numbers& y) {
    const std::size_t n = y.size();
    Numbers sums(n);
    for (std::size_t k = 0; k < n; ++k) {
        long double sum = 0;
        for (std::size_t i = 0; i < n; ++i) sum += y[i] * cosine(i, k, n);
        sums[k] = static_cast<double>(std::sqrt(2.0L / static_cast<long double>(n)) * sum);
    }
    return sums;
}

// The transforms of a host, in a call that the test holds.
struct HostTransforms {
    TestHost host;
    efihost::Call call{host};
    std::list<Value> columns;
    std::vector<std::uint64_t> lengths;

    FourierService service() {
        return {this,
                [](void* self, std::uint64_t n, FourierColumn& column) {
                    auto& own = *static_cast<HostTransforms*>(self);
                    const Numbers zeros(static_cast<std::size_t>(n));
                    const aMatrix& made = own.columns.emplace_back(Value::column(zeros, zeros)).matrix();
                    column = {made.re, made.im, own.columns.back().raw()};
                    own.lengths.push_back(n);
                    return Code::None;
                },
                [](void* self, const FourierColumn& column, FourierResult& result) {
                    auto& own = *static_cast<HostTransforms*>(self);
                    const aMatrix* made = ICFFT(own.call.context(), static_cast<Anyval*>(column.handle));
                    result = {made->re, made->im};
                    return Code::None;
                }};
    }
};

Numbers transformed(Dct4& dct, Numbers line) {
    EXPECT_EQ(dct.transform(line.data(), line.size()), Code::None);
    return line;
}

class Bell : public double_to_double_func {
 public:
    double evaluate(const double& x) override { return std::sin(std::numbers::pi / 2 * x * x); }
    bool failed() override { return false; }
};

using Matrix = std::vector<Numbers>;

// What folding, or unfolding, all segments of a level makes of each unit vector.
Matrix matrixOf(decltype(fold) folding, std::size_t n, int level, const BellSamples& bell) {
    Matrix columns(n, Numbers(n));
    const auto period = static_cast<std::ptrdiff_t>(n);
    const std::ptrdiff_t length = period >> level;
    for (std::size_t i = 0; i < n; ++i) {
        Numbers unit(n);
        unit[i] = 1.0;
        for (std::ptrdiff_t start = 0; start < period; start += length)
            folding({unit.data()}, period, {start, length}, bell, {columns[i].data()});
    }
    return columns;
}

double product(const Numbers& a, const Numbers& b) {
    double sum = 0;
    for (std::size_t i = 0; i < a.size(); ++i) sum += a[i] * b[i];
    return sum;
}

void expectOrthogonal(const Matrix& columns) {
    for (std::size_t i = 0; i < columns.size(); ++i) {
        for (std::size_t k = 0; k < columns.size(); ++k)
            EXPECT_NEAR(product(columns[i], columns[k]), i == k, 1e-15) << i << ", " << k;
    }
}

void expectAdjoint(const Matrix& a, const Matrix& b) {
    for (std::size_t i = 0; i < a.size(); ++i) {
        for (std::size_t k = 0; k < a.size(); ++k) EXPECT_EQ(a[i][k], b[k][i]) << i << ", " << k;
    }
}

}  // namespace

TEST(Dct4, IsTheSumForEveryLengthWithOneColumnForEach) {
    std::vector<std::size_t> lengths(70);
    std::iota(lengths.begin(), lengths.end(), std::size_t{1});
    for (const std::size_t n : {128u, 250u, 255u, 511u, 512u, 1001u}) lengths.push_back(n);
    for (const std::size_t n : lengths) {
        SCOPED_TRACE(n);
        HostTransforms transforms;
        Dct4 dct(transforms.service());
        const Numbers y = noise(n);
        expectNear(transformed(dct, y), directSum(y), 1e-14);
        expectNear(transformed(dct, transformed(dct, y)), y, 1e-14);
        EXPECT_EQ(transforms.lengths, std::vector<std::uint64_t>{n % 2 == 0 ? n / 2 : 4 * n});
    }
}

// An impulse becomes one cosine, so that long transforms need no sum over all pairs.
TEST(Dct4, StaysAccurateAtLengthsTooLongForTheSum) {
    HostTransforms transforms;
    Dct4 dct(transforms.service());
    for (const std::size_t n : {std::size_t{1} << 18, std::size_t{3 * 5 * 7 * 1024}, std::size_t{65537}}) {
        const std::size_t place = n / 3;
        Numbers impulse(n);
        impulse[place] = 1.0;
        const Numbers coefficients = transformed(dct, impulse);
        const double scale = std::sqrt(2.0 / static_cast<double>(n));
        double worst = 0;
        for (std::size_t k = 0; k < n; ++k)
            worst =
                std::max(worst, std::abs(coefficients[k] / scale - static_cast<double>(cosine(place, k, n))));
        EXPECT_LT(worst, 1e-13) << n;
    }
}

TEST(BuiltInBell, HasItsValues) {
    BellSamples bell;
    ASSERT_TRUE(sampleBell(4, nullptr, bell));
    ASSERT_EQ(bell.halfLength, 4);
    expectNear({bell.rising.data(), bell.rising.data() + 4}, {0.806744, 0.939697, 0.991253, 0.999886}, 5e-7);
    expectNear({bell.falling.data(), bell.falling.data() + 4}, {0.590900, 0.342009, 0.131977, 0.015091},
               5e-7);
}

TEST(Folding, IsOrthogonalAndUnfoldingItsAdjoint) {
    Bell own;
    for (double_to_double_func* function :
         {static_cast<double_to_double_func*>(nullptr), static_cast<double_to_double_func*>(&own)}) {
        for (const std::size_t n : {2u, 4u, 6u, 8u, 12u, 16u, 24u}) {
            for (int levels = 0; n % (std::size_t{2} << levels) == 0; ++levels) {
                BellSamples bell;
                ASSERT_TRUE(sampleBell(n >> (levels + 1), function, bell));
                for (int level = 0; level <= levels; ++level) {
                    SCOPED_TRACE(testing::Message() << n << " samples, level " << level << " of " << levels);
                    const Matrix folded = matrixOf(fold, n, level, bell);
                    expectOrthogonal(folded);
                    expectAdjoint(folded, matrixOf(unfold, n, level, bell));
                }
            }
        }
    }
}

// The rows of an image are folded all at once: sample p of row s is number 3 p + s.
TEST(Folding, IsTheSameForSignalsSideBySide) {
    constexpr std::ptrdiff_t n = 16;
    BellSamples bell;
    ASSERT_TRUE(sampleBell(3, nullptr, bell));
    for (const auto& folding : {fold, unfold}) {
        Numbers in = noise(3 * n);
        Numbers out(3 * n);
        for (const std::ptrdiff_t start : {0, 8})
            folding({in.data(), 3, 3}, n, {start, 8}, bell, {out.data(), 3, 3});
        for (std::size_t s = 0; s < 3; ++s) {
            Numbers one;
            Numbers expected(n);
            Numbers actual;
            for (std::size_t p = 0; p < n; ++p) one.push_back(in[3 * p + s]);
            for (const std::ptrdiff_t start : {0, 8})
                folding({one.data()}, n, {start, 8}, bell, {expected.data()});
            for (std::size_t p = 0; p < n; ++p) actual.push_back(out[3 * p + s]);
            EXPECT_EQ(actual, expected);
        }
    }
}
