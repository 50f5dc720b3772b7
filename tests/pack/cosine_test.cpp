// lct, cpt and their inverses: the tables against their definition, every admissible basis there and
// back, bells and transforms that misbehave, errors in their order.
#include <cmath>
#include <limits>
#include <numbers>

#include "support/error_cases.h"
#include "support/packets.h"
#include "support/robustness.h"

using efihost::Callback;
using efihost::RealCallback;

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double twoTo32 = 4294967296.0;
constexpr std::complex<double> complexNumber = {2.0, 1.0};

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

std::vector<Value> joined(const std::vector<Value>& first, const std::vector<Value>& last) {
    std::vector<Value> all;
    for (const auto* part : {&first, &last}) all.insert(all.end(), part->begin(), part->end());
    return all;
}

// A pair of functions that differ in the bell.
struct Cosines {
    const char* split;
    const char* merge;
    RealCallback bell;  // of the test; the function has its own where `user` is not set
    bool user;

    std::vector<Value> with(const std::vector<Value>& arguments) const {
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

Grid transposed(const Grid& grid) {
    Grid other{grid.cols, grid.rows, Numbers(grid.values.size())};
    for (int r = 0; r < grid.rows; ++r) {
        for (int c = 0; c < grid.cols; ++c) other.at(c, r) = grid.at(r, c);
    }
    return other;
}

Grid columnsTransformed(const Grid& data, int level, int halfLength, const RealCallback& bell) {
    Grid result{data.rows, data.cols, {}};
    for (int c = 0; c < data.cols; ++c) {
        const auto first = data.values.begin() + c * data.rows;
        const Numbers line = cosineLine({first, first + data.rows}, level, halfLength, bell);
        result.values.insert(result.values.end(), line.begin(), line.end());
    }
    return result;
}

// Folding and transforming are linear in each direction, so that the order of the passes does not
// matter while all blocks are of one size.
Grid cosineLevel(const Grid& data, int level, int levels, const RealCallback& bell) {
    const int down = data.rows >> (levels + 1);
    const Grid half = columnsTransformed(data, level, down, bell);
    if (data.cols == 1) return half;
    const int along = data.cols < data.rows ? data.cols >> (levels + 1) : down;
    return transposed(columnsTransformed(transposed(half), level, along, bell));
}

class CosinePackets : public PackTest {
 protected:
    void expectDefinition(const Cosines& transform, const Grid& data, int levels) {
        SCOPED_TRACE(testing::Message() << data.rows << " x " << data.cols << ", " << levels << " levels");
        const Value table = host.call(pack(), transform.split, transform.with({data.value(), levels}));
        ASSERT_EQ(table.rows(), levels + 1);
        for (int j = 0; j <= levels; ++j) {
            const Value element = table.nested(j, 0);
            ASSERT_EQ(element.rows(), data.rows);
            ASSERT_EQ(element.cols(), data.cols);
            expectNear(element.reals(), cosineLevel(data, j, levels, transform.bell).values, 1e-13);
        }
    }

    // The coefficients of each tiling, picked from the table, give the data back.
    void expectRestored(const Cosines& transform, const Grid& data, int levels,
                        const std::vector<Tiling>& tilings) {
        const Value table = host.call(pack(), transform.split, transform.with({data.value(), levels}));
        for (const Tiling& tiling : tilings) {
            Grid coefficients = data;
            for (const TestPacket& packet : tiling) {
                const Place place = placeOf(data.rows, data.cols, packet);
                coefficients.put(place, Grid::of(table.nested(packet.level, 0)).part(place));
            }
            const Value basis = basisOf(data.dimensions(), tiling);
            const Value back =
                host.call(pack(), transform.merge, transform.with({coefficients.value(), levels, basis}));
            expectNear(back.reals(), data.values, 1e-13);
        }
    }
};

// All tilings of a signal; of an image those with blocks of one size.
std::vector<Tiling> wholeLevels(int deepest) {
    std::vector<Tiling> tilings;
    for (int level = 0; level <= deepest; ++level) tilings.push_back(wholeLevel(2, level));
    return tilings;
}

}  // namespace

TEST_F(CosinePackets, AreWhatTheyAreDefinedToBe) {
    for (const Cosines& transform : transforms) {
        expectDefinition(transform, noisyGrid(2, 1), 0);
        expectDefinition(transform, noisyGrid(8, 1), 0);
        expectDefinition(transform, noisyGrid(12, 1), 1);
        expectDefinition(transform, noisyGrid(80, 1), 3);
        expectDefinition(transform, noisyGrid(16, 1), 3);
        expectDefinition(transform, noisyGrid(8, 8), 1);
        expectDefinition(transform, noisyGrid(8, 48), 2);
        expectDefinition(transform, noisyGrid(48, 8), 2);
        expectDefinition(transform, noisyGrid(24, 2), 0);
    }
}

TEST_F(CosinePackets, AreRestoredFromEveryBasisOfASignal) {
    for (const Cosines& transform : transforms) {
        expectRestored(transform, noisyGrid(32, 1), 4, allTilings(1, 4));
        expectRestored(transform, noisyGrid(48, 1), 3, allTilings(1, 3));
        expectRestored(transform, noisyGrid(80, 1), 3, allTilings(1, 3));
        std::vector<Tiling> deep;
        for (unsigned seed = 1; seed <= 10; ++seed) deep.push_back(randomTiling(1, 8, seed));
        expectRestored(transform, noisyGrid(1536, 1), 8, deep);
    }
}

TEST_F(CosinePackets, AreRestoredFromEveryLevelOfAnImage) {
    for (const Cosines& transform : transforms) {
        expectRestored(transform, noisyGrid(8, 8), 2, wholeLevels(2));
        expectRestored(transform, noisyGrid(16, 48), 3, wholeLevels(3));
        expectRestored(transform, noisyGrid(96, 32), 3, wholeLevels(3));
        expectRestored(transform, noisyGrid(24, 4), 1, wholeLevels(1));
    }
}

// The inverse takes levels that only the length itself can be halved to: segments of odd length and
// bells shorter than half of them. It is orthogonal, so it undoes nothing but keeps the energy.
TEST_F(CosinePackets, MergesSegmentsOfOddLength) {
    const Numbers coefficients = noise(4 * 35);
    for (const Tiling& tiling : allTilings(1, 2)) {
        const Numbers signal = numbers("icpt", column(coefficients), 2, basisOf(1, tiling));
        double energy = 0, expected = 0;
        for (std::size_t i = 0; i < signal.size(); ++i) {
            energy += signal[i] * signal[i];
            expected += coefficients[i] * coefficients[i];
        }
        EXPECT_NEAR(energy, expected, 1e-12);
    }
    // One coefficient of one segment, as the sum has it, between the bell's ends.
    Numbers one(coefficients.size());
    one[35 + 4] = 1.0;
    const Numbers wave = numbers("icpt", column(one), 2, basisOf(1, wholeLevel(1, 2)));
    const double middle = std::sqrt(2.0 / 35) * std::cos(std::numbers::pi * 17.5 * 4.5 / 35);
    EXPECT_NEAR(wave[35 + 17], middle, 1e-14);
}

TEST_F(CosinePackets, ReadDataWhereverItLies) {
    const Grid image = noisyGrid(8, 16);
    const Value basis = basisOf(2, wholeLevel(2, 1));
    EXPECT_TRUE(same(call("cpt", strided(8, 16, image.values), 1), call("cpt", image.value(), 1)));
    EXPECT_TRUE(
        same(call("icpt", strided(8, 16, image.values), 1, basis), call("icpt", image.value(), 1, basis)));
    EXPECT_TRUE(same(call("cpt", strided(16, 1, noise(16)), 2), call("cpt", column(noise(16)), 2)));
    EXPECT_EQ(numbers("icpt", Value::adopt(8, 1, nullptr), 1, basisOf(1, wholeLevel(1, 1))), Numbers(8));
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
    Numbers both = four;
    both.insert(both.end(), two.begin(), two.end());
    const auto pointsOf = [&](const Grid& data, int levels) {
        points.clear();
        const Value table = call("lct", data.value(), levels, bell);
        const Numbers forward = std::exchange(points, {});
        call("ilct", data.value(), levels, basisOf(data.dimensions(), wholeLevel(data.dimensions(), 0)),
             bell);
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
    for (const auto& [rows, cols] : {std::pair(0, 1), std::pair(0, 4), std::pair(4, 0), std::pair(0, 0)}) {
        const Value empty = Value::matrix(rows, cols, Numbers{});
        const Value basis = basisOf(cols < 2 ? 1 : 2, wholeLevel(cols < 2 ? 1 : 2, 0));
        const auto expectEmpty = [&, rows = rows, cols = cols](const Value& value) {
            EXPECT_EQ(value.rows(), rows);
            EXPECT_EQ(value.cols(), cols);
        };
        host.clear();
        for (const Value& table : {call("lct", empty, 0, bell), call("cpt", empty, 0)}) {
            EXPECT_EQ(table.rows(), 1);
            expectEmpty(table.nested(0, 0));
        }
        expectEmpty(call("ilct", empty, 0, basis, bell));
        expectEmpty(call("icpt", empty, 0, basis));
        EXPECT_EQ(host.calls(Service::transform), 0);
    }
}

TEST_F(CosinePackets, MergeARepeatedRowOnce) {
    for (const bool image : {false, true}) {
        const Value data = (image ? noisyGrid(16, 8) : noisyGrid(16, 1)).value();
        const int dimensions = image ? 2 : 1;
        Tiling tiling = wholeLevel(dimensions, 1);
        const Value plain = call("icpt", data, 1, basisOf(dimensions, tiling));
        const Tiling again = tiling;
        tiling.insert(tiling.end(), again.begin(), again.end());
        host.clear();
        EXPECT_TRUE(same(call("icpt", data, 1, basisOf(dimensions, tiling)), plain));
        EXPECT_EQ(host.polls(), image ? 0 : 2);
        EXPECT_EQ(host.calls(Service::transform), image ? 4 * (8 + 4) : 2);
    }
}

// A bell is asked for numbers alone: what it says else counts as 0, of a complex number the real part.
TEST_F(CosinePackets, TakeWhateverTheBellSays) {
    const Value signal = column(noise(16));
    const Value basis = basisOf(1, wholeLevel(1, 1));
    const auto answering = [](Value answer) {
        return Value::function(Callback([answer](const std::vector<Value>&) { return answer; }));
    };
    const auto expectLike = [&](const Value& bell, double value) {
        EXPECT_TRUE(same(call("lct", signal, 1, bell), call("lct", signal, 1, constantBell(value))));
        EXPECT_TRUE(
            same(call("ilct", signal, 1, basis, bell), call("ilct", signal, 1, basis, constantBell(value))));
    };
    for (const Value& answer : {Value("text"), column({0.5}), Value::error("mine", 1), Value()})
        expectLike(answering(answer), 0.0);
    expectLike(answering(std::complex(0.75, 3.0)), 0.75);
    expectLike(bellOf([](double) { return 0.75; }), 0.75);
}

TEST_F(CosinePackets, ReportABellAboveOne) {
    const Value signal = column(noise(16));
    const Value basis = basisOf(1, wholeLevel(1, 1));
    EXPECT_EQ(complaint("lct", signal, 1, constantBell(1.5)), "floating point error (0)");
    EXPECT_EQ(complaint("ilct", signal, 1, basis, constantBell(-1.0 - 1e-9)), "floating point error (0)");
    EXPECT_EQ(complaint("lct", signal, 1, constantBell(1.0)), "no error");
}

TEST_F(CosinePackets, LetTheBellRaiseAndBeInterrupted) {
    struct Raised {};
    const Value signal = column(noise(16));
    const Value basis = basisOf(1, wholeLevel(1, 1));
    const Value raising = bellOf([](double x) { return x > 0.7 ? throw Raised() : 1.0; });
    EXPECT_THROW(call("lct", signal, 1, raising), Raised);
    EXPECT_THROW(call("ilct", signal, 1, basis, raising), Raised);
    EXPECT_THROW(call("lct", noisyGrid(8, 8).value(), 1, raising), Raised);
    EXPECT_EQ(host.leaks().roots, 0);

    // 4 points: the second and all after it count as 0, and the function is not called again.
    int calls = 0;
    const Value untilThen = bellOf([&](double) { return calls++ == 0 ? 0.75 : 0.0; });
    const Value expected = call("lct", signal, 1, untilThen);
    host.interruptEvaluationAt(2);
    EXPECT_TRUE(same(call("lct", signal, 1, constantBell(0.75)), expected));
    EXPECT_EQ(host.calls(Service::applyOne), 2);
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

Numbers partOf(const double* part, int n) {
    return {part, part + n};
}

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
        [&](const aMatrix& right) { return zeros(right.rows, 0); },
        [&](const aMatrix& right) { return zeros(right.rows - 1, 1); },
        [&](const aMatrix& right) { return zeros(right.rows + 1, 1); },
        [&](const aMatrix& right) { return zeros(1, right.rows); },
    };
    OddHost host;
    for (const auto& answer : answers) {
        host.answer = answer;
        for (const Grid& data : {noisyGrid(16, 1), noisyGrid(8, 16)}) {
            const Value basis = basisOf(data.dimensions(), wholeLevel(data.dimensions(), 1));
            EXPECT_EQ(PackTest::complaintOf(host.callRaw(pack(), "cpt", {data.value(), 1})),
                      "internal fft error (0)");
            EXPECT_EQ(PackTest::complaintOf(host.callRaw(pack(), "icpt", {data.value(), 1, basis})),
                      "internal fft error (0)");
        }
    }
    host.answer = nullptr;
    // The values that the host itself still holds.
    EXPECT_EQ(host.leaks().roots, 0);
    EXPECT_EQ(host.leaks().interfaces, 0);
    EXPECT_EQ(host.leaks().values, 1);
}

TEST(CosinePacketsWithOtherTransforms, ReadAPartThatIsNotThereAsZeros) {
    const Value data = column(noise(3 * 16));
    const Value odd = basisOf(1, wholeLevel(1, 4));
    OddHost host;
    for (const bool real : {true, false}) {
        const auto results = [&] {
            return std::pair(host.call(pack(), "cpt", {data, 3}), host.call(pack(), "icpt", {data, 4, odd}));
        };
        host.answer = [real](const aMatrix& right) {
            const Numbers part = partOf(real ? right.re : right.im, right.rows);
            const Numbers zeros(part.size());
            return real ? Value::column(part, zeros) : Value::column(zeros, part);
        };
        const auto expected = results();
        host.answer = [real](const aMatrix& right) {
            const Numbers part = partOf(real ? right.re : right.im, right.rows);
            auto* memory = static_cast<double*>(::operator new(part.size() * sizeof(double)));
            std::ranges::copy(part, memory);
            return real ? Value::adopt(right.rows, 1, memory) : Value::adopt(right.rows, 1, nullptr, memory);
        };
        const auto actual = results();
        EXPECT_TRUE(same(actual.first, expected.first));
        EXPECT_TRUE(same(actual.second, expected.second));
    }
}

TEST(Robustness, OfCosinePackets) {
    const Value signal = column(noise(8));
    const Value image = noisyGrid(8, 4).value();
    const Value levelOne = basisOf(2, wholeLevel(2, 1));
    const auto fixed = [](std::vector<Value> arguments) { return [=](int) { return arguments; }; };
    expectRobust({"cpt", fixed({signal, 2}), 1});
    expectRobust({"lct", fixed({signal, 1, bellOf(smooth)}), 1});
    expectRobust({"cpt", fixed({image, 1}), 2});
    expectRobust({"lct", fixed({image, 0, bellOf(smooth)}), 1});
    const Value mixed = basisOf(1, {{2, 0}, {1, 1}, {2, 1}, {1, 1}, {2, 0}});
    expectRobust({"icpt", fixed({signal, 2, mixed}), 3});
    expectRobust({"ilct", fixed({signal, 2, mixed, bellOf(smooth)}), 3});
    expectRobust({"icpt", fixed({column(noise(6)), 1, basisOf(1, wholeLevel(1, 1))}), 2});
    expectRobust({"icpt", fixed({image, 1, levelOne}), 0});
    expectRobust({"ilct", fixed({image, 1, levelOne, bellOf(smooth)}), 0});
}

namespace {

struct WrongLevel {
    Value level;
    const char* message;
};

void addForwardCases(std::vector<ErrorCase>& table, const char* name, const std::vector<Value>& bell) {
    const auto add = [&](const Value& data, const Value& level, const char* message, int index) {
        table.push_back({name, joined({data, level}, bell), message, index});
    };
    const auto data = [](int rows, int cols) { return noisyGrid(rows, cols).value(); };
    const Value unreal = Value::column(Numbers{1, 2, 3, 4}, Numbers{0, 0, 0, 1});
    const Value nested = Value::table({1, column({1, 2}), 3, 4});
    for (const Value& wrong : {unreal, nested}) {
        add(wrong, 0, "must be real array", 1);
        add(wrong, complexNumber, "must be real array", 1);
        add(wrong, -1, "must be real array", 1);
    }
    const std::vector<WrongLevel> levels = {
        {complexNumber, "must be real"},
        {std::complex(-1.0, nan), "must be real"},
        {-1, "invalid level"},
        {-0.5, "invalid level"},
        {nan, "invalid level"},
        {inf, "invalid level"},
        {-inf, "invalid level"},
        {twoTo32, "invalid level"},
        {twoTo32 + 0.5, "invalid level"},
        {2.5, "must be integer"},
        {1e-300, "must be integer"},
        {4294967294.5, "must be integer"},
        {4294967295.0, "invalid level"},
        {4, "invalid level"},
        {31, "invalid level"},
        {63, "invalid level"},
        {64, "invalid level"},
    };
    for (const auto& [level, message] : levels) {
        for (const Value& each : {data(16, 1), data(16, 16)}) add(each, level, message, 2);
        // Where the level is no level of the data, either.
        add(data(3, 1), level, message, 2);
    }
    add(data(12, 1), 2, "invalid level", 2);
    add(data(1, 1), 0, "invalid level", 2);
    add(data(7, 1), 0, "invalid level", 2);
    add(data(1, 8), 0, "invalid level", 2);
    add(data(8, 6), 1, "invalid level", 2);
    add(data(6, 8), 1, "invalid level", 2);
    for (const auto& [rows, cols] : {std::pair(0, 1), std::pair(0, 4), std::pair(4, 0)}) {
        for (const double level : {1.0, 63.0, 4294967295.0}) add(data(rows, cols), level, "invalid level", 2);
    }
}

void addInverseCases(std::vector<ErrorCase>& table, const char* name, const std::vector<Value>& bell) {
    const auto add = [&](const Value& data, const Value& level, const Value& basis, const char* message,
                         int index) {
        table.push_back({name, joined({data, level, basis}, bell), message, index});
    };
    const auto data = [](int rows, int cols) { return noisyGrid(rows, cols).value(); };
    const Value unreal = Value::matrix(2, 2, Numbers{0, 1, 0, 0}, Numbers{0, 0, 0, 1});
    const Value nested = Value::table({column({1, 2}), 3});
    for (const Value& wrong : {unreal, nested}) {
        add(wrong, complexNumber, wrong, "must be real array", 1);
        add(data(16, 1), complexNumber, wrong, "must be real", 2);
        add(data(16, 1), -1, wrong, "must be real array", 3);
        add(data(16, 16), 2.5, wrong, "must be real array", 3);
    }
    const std::vector<WrongLevel> levels = {
        {2.5, "must be integer"},   {-0.5, "must be integer"},       {nan, "must be integer"},
        {-1, "invalid level"},      {inf, "invalid level"},          {-inf, "invalid level"},
        {twoTo32, "invalid level"}, {4294967295.0, "invalid level"}, {5, "invalid level"},
        {63, "invalid level"},      {64, "invalid level"},
    };
    for (const int dimensions : {1, 2}) {
        const bool image = dimensions == 2;
        const Value sixteen = data(16, image ? 16 : 1);
        const char* columns =
            image ? "must be 2 dimensional packet basis" : "must be 1 dimensional packet basis";
        // A column count, before entries, before the level.
        for (const int cols : {0, 1, image ? 2 : 3, 4}) {
            add(sixteen, -1, Value::matrix(2, cols, Numbers(static_cast<std::size_t>(2 * cols), 0.5)),
                columns, 3);
        }
        const auto rows = [&](std::vector<Numbers> packets) {
            if (image)
                for (Numbers& packet : packets) packet.push_back(0);
            return basisRows(packets);
        };
        for (const Value& level : {Value(-1), Value(2.5), Value(1)}) {
            add(sixteen, level, rows({{0.5, 0}}), "must be integer", 3);
            add(sixteen, level, rows({{0, 0.5}}), "must be integer", 3);
            add(sixteen, level, rows({{nan, 0}}), "must be integer", 3);
            add(sixteen, level, rows({{-1, 0}}), "invalid packet basis", 3);
            add(sixteen, level, rows({{twoTo32, 0}}), "invalid packet basis", 3);
            add(sixteen, level, rows({{1, 2}}), "invalid packet basis", 3);
            add(sixteen, level, rows({{1, -1}, {0.5, 0}}), "invalid packet basis", 3);
            add(sixteen, level, rows({{0.5, 0}, {1, -1}}), "must be integer", 3);
        }
        // The level, before the basis's depth and tiling.
        const Value deepGap = rows({{5, 0}});
        for (const auto& [level, message] : levels) add(sixteen, level, deepGap, message, 2);
        add(data(12, image ? 12 : 1), 3, deepGap, "invalid level", 2);
        const char* tooDeep = image ? "invalid level in packet basis" : "invalid level";
        add(sixteen, 4, deepGap, tooDeep, 3);
        add(sixteen, 0, rows({{4294967295.0, 0}}), tooDeep, 3);
        add(sixteen, 0, rows({{4, 0}}), "invalid packet basis", 3);
        add(sixteen, 0, rows({{0, 0}, {1, 0}}), "invalid packet basis", 3);
        add(sixteen, 0, Value::matrix(0, dimensions + 1, Numbers{}), "invalid packet basis", 3);
        // What has been settled comes last: packets shorter than the two halves of the bell.
        add(sixteen, 0, basisOf(dimensions, wholeLevel(dimensions, 1)), "invalid level in packet basis", 3);
        add(sixteen, 3, basisOf(dimensions, wholeLevel(dimensions, 4)), "invalid level in packet basis", 3);
    }
    add(data(16, 8), 0, basisOf(2, wholeLevel(2, 1)), "invalid level in packet basis", 3);
    add(data(8, 16), 0, basisOf(2, wholeLevel(2, 1)), "invalid level in packet basis", 3);
    add(data(16, 12), 3, basisOf(2, wholeLevel(2, 0)), "invalid level", 2);
    add(data(12, 16), 3, basisOf(2, wholeLevel(2, 0)), "invalid level", 2);
    add(data(16, 12), 2, basisOf(2, wholeLevel(2, 3)), "invalid level in packet basis", 3);
}

std::vector<ErrorCase> cosineErrors() {
    std::vector<ErrorCase> table;
    // The bell is not looked at before all else is right.
    const Value bell = constantBell(2.0);
    addForwardCases(table, "cpt", {});
    addForwardCases(table, "lct", {bell});
    addInverseCases(table, "icpt", {});
    addInverseCases(table, "ilct", {bell});
    return cases(table);
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(CosinePackets, Errors, testing::ValuesIn(cosineErrors()), nameOfError);
