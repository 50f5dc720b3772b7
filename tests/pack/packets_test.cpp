// wpt, wpts, wpti and their inverses: packets against repeated transforms of one level, and every
// admissible basis there and back.
#include <cmath>
#include <limits>
#include <numbers>

#include "support/error_cases.h"
#include "support/failing_new.h"
#include "support/packets.h"
#include "support/robustness.h"

namespace {

constexpr double root = std::numbers::sqrt2;
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double twoTo32 = 4294967296.0;
constexpr double twoTo40 = 1099511627776.0;
constexpr std::complex<double> complexNumber = {2.0, 1.0};

const Numbers haar = {root / 2, root / 2};
const Numbers daublet4 = {0.48296291314453416, 0.83651630373780794, 0.22414386804201339,
                          -0.12940952255126037};

// A pair of splines, symmetric about a sample.
Value splines() {
    return Value::matrix(5, 2,
                         Numbers{-0.125 * root, 0.25 * root, 0.75 * root, 0.25 * root, -0.125 * root,
                                 0.25 * root, 0.5 * root, 0.25 * root, 0.0, 0.0});
}

struct Treatment {
    const char* split;
    const char* merge;
    const char* oneLevel;
    Value filter;
    Grid signal;       // of at least 4 levels
    Grid image;        // of at least 2 levels
    Grid largeSignal;  // of at least 7 levels
    Grid largeImage;   // of at least 3 levels
};

const std::vector<Treatment> treatments = {
    {"wpt", "iwpt", "dwt", column(daublet4), noisyGrid(16, 1), noisyGrid(8, 12), noisyGrid(640, 1),
     noisyGrid(16, 24)},
    {"wpt", "iwpt", "dwt", splines(), noisyGrid(48, 1), noisyGrid(4, 8), noisyGrid(256, 1), noisyGrid(8, 8)},
    {"wpts", "iwpts", "dwts", column(haar), noisyGrid(16, 1), noisyGrid(7, 4), noisyGrid(131, 1),
     noisyGrid(9, 15)},
    {"wpts", "iwpts", "dwts", splines(), noisyGrid(37, 1), noisyGrid(13, 7), noisyGrid(499, 1),
     noisyGrid(29, 18)},
    {"wpti", "iwpti", "dwti", column(daublet4), noisyGrid(64, 1), noisyGrid(16, 32), noisyGrid(512, 1),
     noisyGrid(32, 64)},
};

class Packets : public PackTest {
 protected:
    // One level of the transform, its four parts (two of a signal) put where the positions' parities
    // say: the low-pass part comes second below an odd position.
    void splitByHand(const Treatment& treatment, const TestPacket& parent, const Grid& level, Grid& next,
                     const std::vector<Value>& more) {
        const Grid packet = level.part(placeOf(level.rows, level.cols, parent));
        std::vector<Value> arguments = {packet.value(), 1, treatment.filter};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const Grid parts = Grid::of(host.call(pack(), treatment.oneLevel, arguments));
        for (int high = 0; high < 2; ++high) {
            for (int highCol = 0; highCol < packet.dimensions(); ++highCol) {
                const TestPacket child = {parent.level + 1, 2 * parent.row + (high ^ parent.row % 2),
                                          2 * parent.col + (highCol ^ parent.col % 2)};
                const Place from = {spanOf(packet.rows, 1, high),
                                    packet.cols == 1 ? Span{0, 1} : spanOf(packet.cols, 1, highCol)};
                next.put(placeOf(level.rows, level.cols, child), parts.part(from));
            }
        }
    }

    void expectRepeatedSteps(const Treatment& treatment, Grid level, int levels,
                             const std::vector<Value>& more = {}) {
        SCOPED_TRACE(std::string(treatment.split) + " of " + std::to_string(level.rows) + " x " +
                     std::to_string(level.cols));
        std::vector<Value> arguments = {level.value(), levels, treatment.filter};
        arguments.insert(arguments.end(), more.begin(), more.end());
        const Value table = host.call(pack(), treatment.split, arguments);
        ASSERT_EQ(table.rows(), levels + 1);
        ASSERT_EQ(table.cols(), 1);
        EXPECT_TRUE(same(table.nested(0, 0), level.value()));
        for (int j = 1; j <= levels; ++j) {
            Grid next = {level.rows, level.cols, Numbers(level.values.size(), nan)};
            for (const TestPacket& parent : wholeLevel(level.dimensions(), j - 1))
                splitByHand(treatment, parent, level, next, more);
            expectNear(table.nested(j, 0).reals(), next.values, 1e-13);
            level = next;
        }
    }

    // The basis form, and extract_basis, hold the table's packets; the inverse restores the data.
    void expectBasis(const Treatment& treatment, const Grid& data, const Value& table, const Tiling& tiling) {
        const Value basis = basisOf(data.dimensions(), tiling);
        Grid expected = {data.rows, data.cols, Numbers(data.values.size(), nan)};
        for (const TestPacket& packet : tiling) {
            const Place place = placeOf(data.rows, data.cols, packet);
            expected.put(place, Grid::of(table.nested(packet.level, 0)).part(place));
        }
        const Value coefficients = call(treatment.split, data.value(), basis, treatment.filter);
        EXPECT_TRUE(same(coefficients, expected.value()));
        EXPECT_TRUE(same(call("extract_basis", table, basis), expected.value()));
        expectNear(numbers(treatment.merge, coefficients, basis, treatment.filter), data.values, 1e-12);
    }
};

TEST_F(Packets, AreRepeatedStepsOfOneLevel) {
    for (const Treatment& treatment : treatments) {
        expectRepeatedSteps(treatment, treatment.signal, 4);
        expectRepeatedSteps(treatment, treatment.image, 2);
        expectRepeatedSteps(treatment, treatment.largeSignal, 7);
        expectRepeatedSteps(treatment, treatment.largeImage, 3);
    }
}

TEST_F(Packets, UseOffsetsAndFlipsAtEveryStep) {
    const Treatment& periodic = treatments.front();
    const Treatment& pair = treatments[1];
    for (const Grid& data : {noisyGrid(32, 1), noisyGrid(8, 16)}) {
        expectRepeatedSteps(periodic, data, 3, {-5});
        expectRepeatedSteps(periodic, data, 3, {2, 1});
        expectRepeatedSteps(pair, data, 3, {row({-2, -1})});
        expectRepeatedSteps(pair, data, 3, {row({1, -3}), row({0, 1})});
    }
    const Value data = column(noise(32));
    const Value basis = basisOf(1, wholeLevel(1, 3));
    const Value rows = row({-2, -1});
    const Value flips = row({1, 1});
    const Value coefficients = call("wpt", data, basis, splines(), rows, flips);
    expectNear(numbers("iwpt", coefficients, basis, splines(), rows, flips), data.reals(), 1e-13);
    EXPECT_FALSE(same(coefficients, call("wpt", data, basis, splines(), rows)));
}

TEST_F(Packets, OfEveryBasisAreThoseOfTheTableAndRestoreTheData) {
    ASSERT_EQ(allTilings(1, 4).size(), 677u);
    ASSERT_EQ(allTilings(2, 2).size(), 17u);
    for (const Treatment& treatment : treatments) {
        SCOPED_TRACE(treatment.split);
        const Value signalTable = call(treatment.split, treatment.signal.value(), 4, treatment.filter);
        for (const Tiling& tiling : allTilings(1, 4))
            expectBasis(treatment, treatment.signal, signalTable, tiling);
        const Value imageTable = call(treatment.split, treatment.image.value(), 2, treatment.filter);
        for (const Tiling& tiling : allTilings(2, 2))
            expectBasis(treatment, treatment.image, imageTable, tiling);
    }
}

// In any order, and with rows that stand twice.
TEST_F(Packets, OfDeeperBasesDoToo) {
    for (const Treatment& treatment : treatments) {
        SCOPED_TRACE(treatment.split);
        const Value signalTable = call(treatment.split, treatment.largeSignal.value(), 7, treatment.filter);
        const Value imageTable = call(treatment.split, treatment.largeImage.value(), 3, treatment.filter);
        for (unsigned seed = 1; seed <= 20; ++seed) {
            Tiling tiling = randomTiling(1, 7, seed);
            if (seed % 2 == 0) tiling.push_back(tiling.front());
            expectBasis(treatment, treatment.largeSignal, signalTable, tiling);
            tiling = randomTiling(2, 3, seed);
            if (seed % 2 == 0) tiling.insert(tiling.begin(), tiling.back());
            expectBasis(treatment, treatment.largeImage, imageTable, tiling);
        }
    }
}

TEST_F(Packets, OfLevelZeroAreTheData) {
    for (const Treatment& treatment : treatments) {
        for (const Grid& data : {noisyGrid(5, 1), noisyGrid(3, 4), noisyGrid(2, 7)}) {
            const Value whole = basisOf(data.dimensions(), {{0, 0, 0}});
            const Value read = strided(data.rows, data.cols, data.values);
            const Value table = call(treatment.split, read, 0, treatment.filter);
            ASSERT_EQ(table.rows(), 1);
            EXPECT_TRUE(same(table.nested(0, 0), data.value()));
            EXPECT_TRUE(same(call(treatment.split, read, whole, treatment.filter), data.value()));
            EXPECT_TRUE(same(call(treatment.merge, read, whole, treatment.filter), data.value()));
        }
    }
    for (const char* name : {"wpt", "wpts"}) {
        for (const Value& empty :
             {column({}), Value::matrix(0, 3, Numbers{}), Value::matrix(3, 0, Numbers{})}) {
            EXPECT_TRUE(same(call(name, empty, 0, column(haar)).nested(0, 0), empty));
            const Value whole = basisOf(empty.cols() < 2 ? 1 : 2, {{0, 0, 0}});
            EXPECT_TRUE(same(call(name, empty, whole, column(haar)), empty));
        }
    }
    // A row is an image of one row.
    EXPECT_TRUE(same(call("wpt", row({1, 2, 3, 4}), 0, column(haar)).nested(0, 0), row({1, 2, 3, 4})));
}

// Memory and columns that the arguments do not have to themselves.
TEST_F(Packets, ReadDataAndBasisWhereverTheyLie) {
    const Numbers basis = {1, 2, 2, 0, 2, 3};
    for (const Treatment& treatment : treatments) {
        const Grid& data = treatment.signal;
        const Value rows = Value::matrix(3, 2, basis);
        const Value stridedRows = strided(3, 2, basis);
        const Value read = strided(data.rows, data.cols, data.values);
        const Value expected = call(treatment.split, data.value(), rows, treatment.filter);
        EXPECT_TRUE(same(call(treatment.split, read, stridedRows, treatment.filter), expected));
        EXPECT_TRUE(same(call(treatment.split, read, 3, treatment.filter),
                         call(treatment.split, data.value(), 3, treatment.filter)));
    }
}

// Sums and differences of neighbours: low of low, high of low, high of high, low of high.
TEST_F(Packets, StandInTheOrderOfFrequency) {
    const Value table = call("wpt", column({1, 2, 3, 5, 7, 11, 13, 17}), 2, column({1.0, 1.0}));
    const auto sizes = [&](int level) {
        Numbers values = table.nested(level, 0).reals();
        for (double& value : values) value = std::fabs(value);
        return values;
    };
    EXPECT_EQ(sizes(1), Numbers({3, 8, 18, 30, 1, 2, 4, 4}));
    EXPECT_EQ(sizes(2), Numbers({11, 48, 5, 12, 1, 0, 3, 8}));
}

// --- errors ---

Value signal(int n) {
    return noisyGrid(n, 1).value();
}
Value image(int rows, int cols) {
    return noisyGrid(rows, cols).value();
}
Value complexColumn() {
    return Value::column(Numbers{1, 2, 3, 4}, Numbers{0, 0, 0, 1});
}
Value complexImage() {
    return Value::matrix(2, 2, Numbers(4), Numbers{0, 0, 0, 1});
}
Value nestedColumn() {
    return Value::table({1, column({1, 2}), 3, 4});
}
Value tiling(int dimensions, int level) {
    return basisOf(dimensions, wholeLevel(dimensions, level));
}

// Of a signal: packets 1 of all levels down to the depth, and packet 0 of the deepest.
Value comb(int depth) {
    std::vector<Numbers> rows;
    for (int j = 1; j <= depth; ++j) rows.push_back({double(j), 1.0});
    rows.push_back({double(depth), 0.0});
    return basisRows(rows);
}

constexpr const char* badBasis = "invalid packet basis";
constexpr const char* badDepth = "invalid level in packet basis";
constexpr const char* notInteger = "must be integer";

struct BadBasis {
    Value basis;
    const char* message;
};

// Bases that no data of these dimensions has, and the complaint where entries are looked at first.
std::vector<BadBasis> badEntries(int dimensions) {
    const auto rows = [=](std::vector<Numbers> values) {
        if (dimensions == 2) {
            for (Numbers& each : values) each.push_back(0.0);
        }
        return basisRows(values);
    };
    std::vector<BadBasis> bases = {
        {rows({{nan, 0}}), notInteger},
        {rows({{0.5, 0}}), notInteger},
        {rows({{-0.5, nan}}), notInteger},
        {rows({{-1, 0.5}}), badBasis},
        {rows({{-inf, 0}}), badBasis},
        {rows({{0, nan}}), notInteger},
        {rows({{0, 0.5}}), notInteger},
        {rows({{0, -0.5}}), notInteger},
        {rows({{0, -1}}), badBasis},
        {rows({{0, 1}}), badBasis},
        {rows({{0, inf}}), badBasis},
        {rows({{0, -inf}}), badBasis},
        {rows({{0, twoTo40}}), badBasis},
        {rows({{1, 0}, {1, 2}}), badBasis},
        {rows({{1, 2}, {1, 0.5}}), badBasis},
        {rows({{1, 0.5}, {1, 2}}), notInteger},
        {rows({{0, 0}, {nan, 0}}), notInteger},
    };
    if (dimensions == 2) {
        bases.push_back({basisRows({{0, 1, nan}}), badBasis});
        bases.push_back({basisRows({{0, nan, 1}}), notInteger});
        bases.push_back({basisRows({{0, 0, nan}}), notInteger});
        bases.push_back({basisRows({{0, 0, 1}}), badBasis});
        bases.push_back({basisRows({{0, 0, -1}}), badBasis});
        bases.push_back({basisRows({{1, 0, 0}, {1, 0, 1}, {1, 1, 0}, {1, 1, 2}}), badBasis});
    }
    return bases;
}

// Levels beyond all data whose entries are bad besides, by the complaint about the entries.
std::vector<BadBasis> badEntriesFarBelow(int dimensions) {
    const auto rows = [=](double level, double position) {
        return basisRows({dimensions == 1 ? Numbers{level, position} : Numbers{level, position, 0.0}});
    };
    return {
        {rows(twoTo40, 0), badBasis},  {rows(inf, 0), badBasis},    {rows(twoTo32, 0), badBasis},
        {rows(1e300, nan), badBasis},  {rows(40.5, 0), notInteger}, {rows(40, 0.5), notInteger},
        {rows(40, twoTo40), badBasis}, {rows(40, -1), badBasis},    {rows(twoTo32 - 1, inf), badBasis},
        {rows(2000, nan), notInteger},
    };
}

// Entries as they must be, far below all data, that leave gaps.
std::vector<Value> gapsFarBelow(int dimensions) {
    const auto rows = [=](double level, double position) {
        return basisRows({dimensions == 1 ? Numbers{level, position} : Numbers{level, position, 0.0}});
    };
    return {rows(twoTo32 - 1, 0), rows(1000000, 0), rows(1024, 1e308), rows(40, twoTo40 - 1), rows(63, 0)};
}

// Gaps and overlaps in data of at least two levels.
std::vector<Value> untiled(int dimensions) {
    std::vector<Value> bases = {Value::matrix(0, dimensions + 1, Numbers{})};
    for (int level = 1; level <= 2; ++level) {
        const Tiling whole = wholeLevel(dimensions, level);
        for (std::size_t left = 0; left < whole.size(); ++left) {
            Tiling gap = whole;
            gap.erase(gap.begin() + static_cast<std::ptrdiff_t>(left));
            bases.push_back(basisOf(dimensions, gap));
            gap.insert(gap.begin(), gap.front());  // as many rows as tile
            bases.push_back(basisOf(dimensions, gap));
        }
        Tiling overlap = whole;
        overlap.push_back({level - 1, 0, 0});
        bases.push_back(basisOf(dimensions, overlap));
    }
    if (dimensions == 1) {
        bases.push_back(basisRows({{1, 0}, {2, 2}}));
        bases.push_back(basisRows({{1, 0}, {2, 0}, {1, 1}}));
        bases.push_back(basisRows({{0, 0}, {2, 3}}));
        bases.push_back(basisRows({{2, 1}, {2, 2}, {1, 0}, {1, 1}}));
    } else {
        bases.push_back(basisRows({{0, 0, 0}, {2, 1, 3}}));
        bases.push_back(basisRows({{1, 0, 0}, {1, 0, 0}, {1, 1, 0}, {1, 1, 1}}));
        bases.push_back(basisRows({{1, 0, 0}, {1, 0, 1}, {1, 1, 0}, {2, 2, 2}}));
    }
    return bases;
}

const char* const forwardNames[] = {"wpt", "wpts", "wpti"};
const char* const allNames[] = {"wpt", "wpts", "wpti", "iwpt", "iwpts", "iwpti"};

void addWaveletCases(std::vector<ErrorCase>& table, const char* name, bool takesOffsets) {
    const auto add = [&](std::vector<Value> arguments, const char* message, int index) {
        table.push_back({name, std::move(arguments), message, index});
    };
    const Value wrong = complexColumn();
    for (const Value& second : {Value::matrix(1, 2, Numbers{1, 2}, Numbers{1, 1}), tiling(1, 1)}) {
        add({wrong, second, complexColumn()}, "must be real array", 3);
        add({wrong, second, nestedColumn()}, "must be real array", 3);
        add({wrong, second, column({})}, "filter unimplemented", 3);
        add({wrong, second, column({0.5, nan})}, "filter unimplemented", 3);
        add({wrong, second, Value::matrix(2, 3, Numbers(6, 0.5))}, "filter unimplemented", 3);
        if (!takesOffsets) continue;
        add({wrong, second, column(haar), complexNumber}, "must be real array", 4);
        add({wrong, second, column(haar), complexNumber, complexNumber}, "must be real array", 4);
        add({wrong, second, column(haar), 0.5, complexNumber}, "must be real array", 5);
        add({wrong, second, column(haar), 0.5}, "filter unimplemented", 3);
        add({wrong, second, column(haar), 0, 2}, "filter unimplemented", 3);
    }
}

void addLevelCases(std::vector<ErrorCase>& table, const char* name) {
    const auto add = [&](std::vector<Value> arguments, const char* message, int index) {
        table.push_back({name, std::move(arguments), message, index});
    };
    // Unsuitable for wpts and wpti, which look at it last.
    const Value filter = column({0.6, 0.8, 0.1});
    for (const Value& unreal : {complexColumn(), complexImage(), nestedColumn()}) {
        add({unreal, complexNumber, filter}, "must be real array", 1);
        add({unreal, -1, filter}, "must be real array", 1);
    }
    for (const Value& data : {signal(8), image(8, 8)}) {
        add({data, complexNumber, filter}, "must be real", 2);
        add({data, std::complex(-1.0, nan), filter}, "must be real", 2);
        for (const double level : {2.5, 0.5, 1e-300, 4294967294.5}) add({data, level, filter}, notInteger, 2);
        for (const double level : {-1.0, -0.5, nan, inf, -inf, twoTo32, twoTo32 + 0.5, twoTo40, 1e300, 4.0,
                                   31.0, 32.0, 64.0, twoTo32 - 1}) {
            add({data, level, filter}, "invalid level", 2);
        }
    }
    for (const Value& empty : {column({}), Value::matrix(0, 4, Numbers{}), Value::matrix(4, 0, Numbers{})}) {
        for (const double level : {1.0, 31.0, 64.0}) add({empty, level, filter}, "invalid level", 2);
    }
    add({row({1, 2, 3, 4}), 1, filter}, "invalid level", 2);
    add({signal(8), Value::ofTag(16), filter}, "illegal context", 2);
    add({signal(8), "2", filter}, "EfiMustBeScalarOrArray", 2);
}

void addLevelCases(std::vector<ErrorCase>& table) {
    for (const char* name : forwardNames) addLevelCases(table, name);
    const auto add = [&](const char* name, const Value& data, int level, const Numbers& filter,
                         const char* message, int index) {
        table.push_back({name, {data, level, column(filter)}, message, index});
    };
    add("wpt", signal(12), 3, haar, "invalid level", 2);
    add("wpt", image(4, 6), 2, haar, "invalid level", 2);
    add("wpt", image(6, 4), 2, haar, "invalid level", 2);
    add("wpts", signal(8), 3, daublet4, "not a symmetric wavelet", 3);
    add("wpts", signal(7), 3, daublet4, "invalid level", 2);
    add("wpts", image(8, 3), 2, haar, "invalid level", 2);
    add("wpts", image(3, 8), 2, haar, "invalid level", 2);
    add("wpti", signal(64), 1, haar, "interval wavelets unimplemented", 3);
    add("wpti", signal(65), 1, haar, "invalid level", 2);
    add("wpti", signal(1), 0, daublet4, "invalid level", 2);
    add("wpti", image(1, 2), 0, daublet4, "invalid level", 2);
    add("wpti", image(2, 1), 0, {0.6, 0.8}, "interval wavelets unimplemented", 3);
    add("wpti", column({}), 0, daublet4, "invalid level", 2);
    add("wpti", signal(16), 4, daublet4, "invalid level", 2);
    add("wpti", signal(16), 3, daublet4, "invalid level", 2);  // the last step finds 4 samples, not 8
    add("wpti", image(16, 32), 3, daublet4, "invalid level", 2);
    add("wpti", image(8, 2), 2, daublet4, "invalid level", 2);
}

void addBasisCases(std::vector<ErrorCase>& table, const char* name) {
    const bool takesAnyLength = std::string_view(name).ends_with("wpts");
    const bool isInterval = std::string_view(name).ends_with("wpti");
    const auto add = [&](const Value& data, const Value& basis, const char* message, int index = 2) {
        // Unsuitable for the symmetric and the interval transforms, which look at it last.
        table.push_back({name, {data, basis, column({0.6, 0.8, 0.1})}, message, index});
    };
    const Value complexBasis = Value::matrix(1, 2, Numbers{0, 0}, Numbers{0, 1});
    for (const Value& unreal : {complexColumn(), complexImage(), nestedColumn()}) {
        add(unreal, complexBasis, "must be real array", 1);
        add(unreal, tiling(1, 9), "must be real array", 1);
    }
    for (const Value& data : {signal(8), image(8, 8)}) {
        add(data, complexBasis, "must be real array");
        add(data, nestedColumn(), "must be real array");
    }
    for (const Value& basis :
         {tiling(2, 1), column({0}), Value::matrix(1, 4, Numbers(4)), basisRows({{nan, nan, nan}})}) {
        add(signal(8), basis, "must be 1 dimensional packet basis");
    }
    for (const Value& basis :
         {tiling(1, 1), column({0}), Value::matrix(1, 4, Numbers(4)), basisRows({{nan, nan}})}) {
        add(image(8, 8), basis, "must be 2 dimensional packet basis");
        add(row({1, 2}), basis, "must be 2 dimensional packet basis");
    }
    add(Value::matrix(3, 0, Numbers{}), tiling(2, 0), "must be 1 dimensional packet basis");

    for (const auto& [basis, message] : badEntries(1)) add(signal(16), basis, message);
    for (const auto& [basis, message] : badEntries(2)) add(image(16, 16), basis, message);
    // A signal's depth is looked at before its entries, an image's after them.
    for (const auto& [basis, message] : badEntriesFarBelow(1)) add(signal(16), basis, badDepth);
    for (const auto& [basis, message] : badEntriesFarBelow(2)) add(image(16, 16), basis, message);
    for (const Value& basis : gapsFarBelow(1)) add(signal(16), basis, badDepth);
    for (const Value& basis : gapsFarBelow(2)) add(image(16, 16), basis, badDepth);
    add(signal(16), comb(40), badDepth);
    add(signal(16), comb(2000), badDepth);
    for (const Value& basis : untiled(1)) add(signal(16), basis, badBasis);
    for (const Value& basis : untiled(2)) add(image(16, 16), basis, badBasis);
    add(signal(16), basisRows(std::vector<Numbers>(5000, {1, 0})), badBasis);
    add(image(16, 16), basisRows(std::vector<Numbers>(5000, {2, 3, 1})), badBasis);
    add(column({}), tiling(1, 1), badDepth);
    add(Value::matrix(0, 4, Numbers{}), tiling(2, 1), badDepth);
    add(row(Numbers(8)), tiling(2, 1), badDepth);

    if (!takesAnyLength) {
        add(signal(24), tiling(1, 4), badDepth);
        add(signal(12), basisRows({{3, 0.5}}), badDepth);
        add(image(12, 8), tiling(2, 3), badDepth);
        add(image(8, 12), basisRows({{3, 0.5, 0}}), notInteger);
        add(image(8, 12), basisRows({{3, 0, 0}}), badDepth);
    }
    if (takesAnyLength) {
        add(signal(15), tiling(1, 4), badDepth);
        add(image(15, 16), tiling(2, 4), badDepth);
        add(image(16, 15), tiling(2, 4), badDepth);
        add(signal(12), tiling(1, 2), "not a symmetric wavelet", 3);
        add(image(5, 4), tiling(2, 1), "not a symmetric wavelet", 3);
    }
    if (isInterval) {
        add(signal(64), tiling(1, 2), "interval wavelets unimplemented", 3);
        add(image(64, 64), tiling(2, 2), "interval wavelets unimplemented", 3);
        const Value filter = column(daublet4);
        for (const int level : {3, 4}) {
            table.push_back({name, {signal(16), tiling(1, level), filter}, badDepth, 2});
            table.push_back({name, {image(16, 16), tiling(2, level), filter}, badDepth, 2});
        }
        table.push_back({name, {signal(1), tiling(1, 0), filter}, badDepth, 2});
        table.push_back({name, {column({}), tiling(1, 0), filter}, badDepth, 2});
    }
}

std::vector<ErrorCase> packetErrors() {
    std::vector<ErrorCase> table;
    for (const char* name : allNames) {
        addWaveletCases(table, name, std::string_view(name).ends_with("wpt"));
        addBasisCases(table, name);
    }
    addLevelCases(table);
    return cases(table);
}

INSTANTIATE_TEST_SUITE_P(Packets, Errors, testing::ValuesIn(packetErrors()), nameOfError);

// Whatever the levels say, the memory asked for is some bytes a row.
TEST_F(Packets, AbsurdBasesCostNoMoreThanTheirRows) {
    const auto requested = [&](const char* name, const Value& data, const Value& basis) {
        const long before = allocatedBytes();
        const std::string answer = complaint(name, data, basis, column(haar));
        EXPECT_TRUE(answer.starts_with("invalid") || answer.starts_with("must be integer")) << answer;
        return allocatedBytes() - before;
    };
    const auto allowance = [](const Value& basis) { return 20000 + 200L * basis.rows(); };
    const auto function = Value::function(efihost::Callback([](const auto&) -> Value { return 0; }));
    for (const int dimensions : {1, 2}) {
        const Value data = dimensions == 1 ? signal(16) : image(16, 16);
        std::vector<Value> bases = gapsFarBelow(dimensions);
        for (const auto& [basis, message] : badEntriesFarBelow(dimensions)) bases.push_back(basis);
        const Numbers far = {30, 5, 7};
        bases.push_back(
            basisRows(std::vector<Numbers>(5000, Numbers(far.begin(), far.begin() + dimensions + 1))));
        if (dimensions == 1) bases.push_back(comb(40));
        if (dimensions == 1) bases.push_back(comb(5000));
        for (const Value& basis : bases) {
            for (const char* name : allNames)
                EXPECT_LT(requested(name, data, basis), allowance(basis)) << name;
            const long before = allocatedBytes();
            EXPECT_TRUE(
                complaint("evalbs", data, basis, function).starts_with(basis.rows() > 1 ? "invalid" : ""));
            EXPECT_LT(allocatedBytes() - before, allowance(basis));
        }
    }
}

// --- troubles ---

Value freshFilter(int variant) {
    return column({0.5, 0.5 + 1e-3 * variant, 0.25});
}

TEST(PacketRobustness, PollsAsOftenAsSaidAndSurvivesEveryTrouble) {
    const auto given = [](const Value& data, const Value& second, const Value& filter = {}) {
        return [=](int variant) {
            return std::vector<Value>{data, second, filter ? filter : freshFilter(variant)};
        };
    };
    constexpr const char* refused = "filter unimplemented (3)";
    const Value deep = basisRows({{1, 0}, {2, 3}, {3, 4}, {3, 5}});
    const Value blocks =
        basisRows({{1, 1, 1}, {1, 0, 1}, {1, 1, 0}, {2, 0, 0}, {2, 0, 1}, {2, 1, 0}, {2, 1, 1}});
    const Value symmetric = column(haar);
    const Value interval = column(daublet4);

    expectRobust({"wpt", given(signal(16), 3), 4, refused});
    expectRobust({"wpt", given(signal(16), 0), 1, refused});
    expectRobust({"wpt", given(image(8, 4), 2), 1, refused});
    expectRobust({"wpts", given(signal(13), 3, symmetric), 4});
    expectRobust({"wpts", given(image(5, 7), 2, symmetric), 1});
    expectRobust({"wpti", given(signal(32), 2, interval), 3});
    expectRobust({"wpti", given(image(16, 16), 2, interval), 1});

    expectRobust({"wpt", given(signal(16), deep), 4, refused});
    expectRobust({"wpt", given(image(8, 4), blocks), 3, refused});
    expectRobust({"wpts", given(signal(13), deep, symmetric), 4});
    expectRobust({"wpti", given(image(16, 16), blocks, interval), 3});

    expectRobust({"iwpt", given(signal(16), deep), 3, refused});
    expectRobust({"iwpt", given(signal(16), basisRows({{0, 0}})), 0, refused});
    expectRobust({"iwpt", given(image(8, 4), blocks), 2, refused});
    expectRobust({"iwpts", given(image(5, 7), blocks, symmetric), 2});
    expectRobust({"iwpti", given(signal(64), deep, interval), 3});
}

}  // namespace
