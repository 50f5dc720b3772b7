// lct, cpt and their inverses: the tables against their definition, every admissible basis there and
// back, bells and transforms that misbehave.
#include <cmath>
#include <numbers>
#include <numeric>

#include "support/packets.h"

using efihost::Callback;
using efihost::RealCallback;

namespace {

double smooth(double x) {
    return std::sin(std::numbers::pi / 2 * std::sqrt(x));
}
double builtIn(double x) {
    return std::sin(std::numbers::pi / 4 * (1.0 - std::cos(std::numbers::pi * x)));
}
Value bellOf(RealCallback bell) {
    return Value::function(std::move(bell));
}
Value constantBell(double value) {
    return bellOf([value](double) { return value; });
}

// A pair of functions that differ in the bell.
struct Cosines {
    const char* split;
    const char* merge;
    RealCallback bell;  // of the test; the function has its own where `user` is not set
    bool user;

    Arguments with(const Arguments& arguments) const {
        return user ? joined(arguments, {bellOf(bell)}) : arguments;
    }
};

const std::vector<Cosines> transforms = {
    {"cpt", "icpt", builtIn, false},
    {"lct", "ilct", smooth, true},
    {"lct", "ilct", [](double) { return std::numbers::sqrt2 / 2; }, true},
};

// One line folded and transformed, term by term.
Numbers cosineLine(const Numbers& x, int level, int halfLength, const RealCallback& bell) {
    const int n = static_cast<int>(x.size());
    const int length = n >> level;
    const auto at = [&](int i) { return x[static_cast<std::size_t>((i + n) % n)]; };
    const auto rising = [&](int k) { return bell(0.5 + (k + 0.5) / (2.0 * halfLength)); };
    const auto falling = [&](int k) { return std::sqrt(1.0 - rising(k) * rising(k)); };
    Numbers result;
    for (int a = 0; a < n; a += length) {
        Numbers y(x.begin() + a, x.begin() + a + length);
        for (int k = 0; k < halfLength; ++k) {
            y[static_cast<std::size_t>(k)] = rising(k) * at(a + k) + falling(k) * at(a - 1 - k);
            y[static_cast<std::size_t>(length - 1 - k)] =
                rising(k) * at(a + length - 1 - k) - falling(k) * at(a + length + k);
        }
        for (int k = 0; k < length; ++k) {
            double sum = 0;
            for (int i = 0; i < length; ++i)
                sum += y[static_cast<std::size_t>(i)] *
                       std::cos(std::numbers::pi * (i + 0.5) * (k + 0.5) / length);
            result.push_back(std::sqrt(2.0 / length) * sum);
        }
    }
    return result;
}

class CosinePackets : public PackTest {
 protected:
    // Of a product of signals, each direction by itself; a signal is a product with 1.
    void expectDefinition(const Cosines& transform, int rows, int cols, int levels) {
        SCOPED_TRACE(testing::Message() << rows << " x " << cols << ", " << levels << " levels");
        const Numbers a = noise(static_cast<std::size_t>(rows), 1);
        const Numbers b = cols == 1 ? Numbers{1} : noise(static_cast<std::size_t>(cols), 2);
        const Value data = outer(a, b).value();
        const Value table = host.call(pack(), transform.split, transform.with({data, levels}));
        ASSERT_EQ(table.rows(), levels + 1);
        const int down = rows >> (levels + 1);
        const int along = cols < rows ? cols >> (levels + 1) : down;
        for (int j = 0; j <= levels; ++j) {
            const Value element = table.nested(j, 0);
            ASSERT_EQ(element.rows(), rows);
            ASSERT_EQ(element.cols(), cols);
            const Numbers right = cols == 1 ? b : cosineLine(b, j, along, transform.bell);
            expectNear(element.reals(), outer(cosineLine(a, j, down, transform.bell), right).values, 1e-13);
        }
    }

    // The coefficients of each tiling, picked from the table, give the data back; a row that stands
    // twice counts once.
    void expectRestored(const Cosines& transform, const Grid& data, int levels,
                        const std::vector<Tiling>& tilings) {
        const Value table = host.call(pack(), transform.split, transform.with({data.value(), levels}));
        for (Tiling tiling : tilings) {
            tiling.push_back(tiling.front());
            const Value basis = basisOf(data.dimensions(), tiling);
            const Value back = host.call(pack(), transform.merge,
                                         transform.with({picked(table, tiling).value(), levels, basis}));
            expectNear(back.reals(), data.values, 1e-13);
        }
    }
};

}  // namespace

TEST_F(CosinePackets, AreWhatTheyAreDefinedToBe) {
    for (const Cosines& transform : transforms) {
        for (const auto& [n, levels] : {std::pair(2, 0), {12, 1}, {80, 3}, {16, 3}})
            expectDefinition(transform, n, 1, levels);
        for (const auto& [rows, cols, levels] : {std::tuple(8, 48, 2), {48, 8, 2}, {24, 16, 1}})
            expectDefinition(transform, rows, cols, levels);
    }
}

// Of a signal every basis, of an image those with blocks of one size.
TEST_F(CosinePackets, AreRestoredFromEveryBasis) {
    const std::vector<Tiling> levels = {wholeLevel(2, 0), wholeLevel(2, 1), wholeLevel(2, 2),
                                        wholeLevel(2, 3)};
    for (const Cosines& transform : transforms) {
        expectRestored(transform, noisyGrid(32, 1), 4, allTilings(1, 4));
        expectRestored(transform, noisyGrid(80, 1), 3, allTilings(1, 3));
        expectRestored(transform, noisyGrid(1536, 1), 8, {randomTiling(1, 8, 1), randomTiling(1, 8, 2)});
        expectRestored(transform, noisyGrid(16, 48), 3, levels);
        expectRestored(transform, noisyGrid(96, 32), 3, levels);
    }
}

// A bell of 1 leaves a segment to itself; its transform is its own inverse.
TEST_F(CosinePackets, AreSumsAndTheirOwnInversesForEveryLength) {
    std::vector<int> lengths(70);
    std::iota(lengths.begin(), lengths.end(), 1);
    lengths.insert(lengths.end(), {128, 250, 255, 511, 512, 1001});
    for (const int n : lengths) {
        SCOPED_TRACE(n);
        const auto merged = [&](const Value& line) {
            return call("ilct", line, 0, basisOfLevel(1, 0), constantBell(1.0));
        };
        host.clear();
        const Value sums = merged(signal(n));
        expectNear(merged(sums).reals(), signal(n).reals(), 1e-14);
        EXPECT_EQ(host.calls(Service::transform), 2);
        if (n <= 70) expectNear(sums.reals(), cosineLine(signal(n).reals(), 0, 0, {}), 1e-13);
    }
}

// The inverse takes levels that only the length itself can be halved to: segments of odd length and
// bells shorter than half of them. It is orthogonal, so it undoes nothing but keeps the energy.
TEST_F(CosinePackets, MergesSegmentsOfOddLength) {
    const auto energyOf = [](const Numbers& values) {
        return std::inner_product(values.begin(), values.end(), values.begin(), 0.0);
    };
    for (const Tiling& tiling : allTilings(1, 2)) {
        const Numbers merged = numbers("icpt", signal(4 * 35), 2, basisOf(1, tiling));
        EXPECT_NEAR(energyOf(merged), energyOf(noise(4 * 35)), 1e-12);
    }
}

// A power of two goes through every sum: so do 2^1018 times the numbers, though some sums overflow.
TEST_F(CosinePackets, OverflowWhereTheirValuesDo) {
    const auto times = [](double factor, Numbers values) {
        for (double& value : values) value *= factor;
        return values;
    };
    const auto expectScaled = [&](const char* name, int rows, int cols, const Arguments& others) {
        const auto transformed = [&](double factor) {
            const Numbers data = times(factor, noise(static_cast<std::size_t>(rows * cols)));
            const Value result = host.call(pack(), name, joined({Value::matrix(rows, cols, data)}, others));
            return result.anyNested() ? result.nested(1, 0).reals() : result.reals();
        };
        EXPECT_EQ(transformed(0x1p1018), times(0x1p1018, transformed(1.0))) << name << rows << cols;
        const Value largest =
            Value::matrix(rows, cols, Numbers(static_cast<std::size_t>(rows * cols), 1.7e308));
        EXPECT_EQ(PackTest::complaintOf(host.callRaw(pack(), name, joined({largest}, others))),
                  "overflow (0)");
    };
    const Value bell = bellOf(smooth);
    for (const auto& [rows, cols] : {std::pair(64, 1), {4 * 59, 1}, {16, 32}}) {
        const Value basis = basisOfLevel(cols == 1 ? 1 : 2, 1);
        expectScaled("cpt", rows, cols, {1});
        expectScaled("lct", rows, cols, {1, bell});
        expectScaled("icpt", rows, cols, {1, basis});
        expectScaled("ilct", rows, cols, {1, basis, bell});
    }
    expectScaled("icpt", 2 * 35, 1, {1, basisOfLevel(1, 1)});
}

// One bell for all segments and levels; a taller image has one more, for its rows.
TEST_F(CosinePackets, SampleTheBellOnceForEachHalfLength) {
    Numbers points;
    const Value bell = bellOf([&](double x) {
        points.push_back(x);
        return 1.0;
    });
    const Numbers two = {0.625, 0.875};
    const Numbers four = {0.5625, 0.6875, 0.8125, 0.9375};
    const Numbers both = {0.5625, 0.6875, 0.8125, 0.9375, 0.625, 0.875};
    const auto pointsOf = [&](const Grid& data, int levels) {
        points.clear();
        const Value table = call("lct", data.value(), levels, bell);
        const Numbers forward = std::exchange(points, {});
        call("ilct", data.value(), levels, basisOfLevel(data.dimensions(), 0), bell);
        EXPECT_EQ(points, forward);
        return forward;
    };
    EXPECT_EQ(pointsOf(noisyGrid(16, 1), 2), two);
    EXPECT_EQ(pointsOf(noisyGrid(8, 8), 0), four);
    EXPECT_EQ(pointsOf(noisyGrid(16, 32), 1), four);
    EXPECT_EQ(pointsOf(noisyGrid(16, 8), 1), both);
}

TEST_F(CosinePackets, MakeNoCallsForEmptyData) {
    const Value bell = bellOf([](double) -> double { throw "called"; });
    for (const Value& empty : {column({}), image(0, 4), image(4, 0)}) {
        const Value basis = basisOfLevel(empty.cols() < 2 ? 1 : 2, 0);
        EXPECT_TRUE(same(call("lct", empty, 0, bell).nested(0, 0), empty));
        EXPECT_TRUE(same(call("ilct", empty, 0, basis, bell), empty));
    }
    EXPECT_EQ(host.calls(Service::transform), 0);
}

namespace {

// Answers with some other value than the transform.
class OddHost : public TestHost {
 public:
    std::function<Value(const aMatrix& right)> answer;

    aMatrix* transform(Anyval* column, bool inverse) override {
        given = answer(*TestHost::transform(column, inverse));
        return static_cast<aMatrix*>(given.raw());
    }

 private:
    Value given;
};

}  // namespace

TEST(CosinePacketsWithOtherTransforms, ReportWhatIsNoColumnOfTheSameLength) {
    const auto zeros = [](int rows, int cols) {
        const Numbers values(static_cast<std::size_t>(rows * cols));
        return Value::matrix(rows, cols, values, values);
    };
    const std::vector<std::function<Value(const aMatrix&)>> answers = {
        [](const aMatrix&) { return Value::error("no transform today", 1); },
        [](const aMatrix&) { return Value(); },
        [](const aMatrix&) { return Value(3.0); },
        [&](const aMatrix& right) { return zeros(right.rows, 2); },
        [&](const aMatrix& right) { return zeros(right.rows - 1, 1); },
        [&](const aMatrix& right) { return zeros(1, right.rows); },
    };
    OddHost host;
    for (const auto& answer : answers) {
        host.answer = answer;
        for (const Value& data : {signal(16), image(8, 16)}) {
            const Value basis = basisOfLevel(data.cols() == 1 ? 1 : 2, 1);
            const Value forward = host.callRaw(pack(), "cpt", {data, 1});
            EXPECT_EQ(PackTest::complaintOf(forward), "internal fft error (0)");
            const Value inverse = host.callRaw(pack(), "icpt", {data, 1, basis});
            EXPECT_EQ(PackTest::complaintOf(inverse), "internal fft error (0)");
        }
    }
    host.answer = nullptr;
    // The value that the host itself still holds.
    EXPECT_EQ(host.leaks(), (TestHost::Leaks{1, 0, 0}));
}

// For an even and an odd length, each several times.
TEST(CosinePacketsWithOtherTransforms, MayUseTheColumnForTheirWork) {
    class InPlace : public TestHost {
        aMatrix* transform(Anyval* column, bool inverse) override {
            aMatrix* result = TestHost::transform(column, inverse);
            const auto& used = static_cast<const aMatrix&>(*column);
            std::fill_n(used.re, used.rows, 7.0);
            std::fill_n(used.im, used.rows, 7.0);
            return result;
        }
    };
    TestHost usual;
    for (const auto& [rows, levels] : {std::pair(32, 2), {4 * 7, 2}}) {
        const Arguments arguments = {signal(rows), levels, basisOfLevel(1, levels)};
        EXPECT_TRUE(same(InPlace().call(pack(), "icpt", arguments), usual.call(pack(), "icpt", arguments)));
    }
}

TEST(CosinePacketsWithOtherTransforms, ReadPartsThatAreNotThereAsZeros) {
    OddHost host;
    host.answer = [](const aMatrix& right) { return Value::adopt(right.rows, 1, nullptr); };
    const Value data = signal(3 * 16);
    EXPECT_EQ(host.call(pack(), "cpt", {data, 3}).nested(3, 0).reals(), Numbers(3 * 16));
    EXPECT_EQ(host.call(pack(), "icpt", {data, 4, basisOfLevel(1, 4)}).reals(), Numbers(3 * 16));
}
