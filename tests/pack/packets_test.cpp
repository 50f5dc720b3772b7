// wpt, wpts, wpti and their inverses: packets against repeated transforms of one level, and every
// admissible basis there and back.
#include <numbers>

#include "support/failing_new.h"
#include "support/packets.h"
#include "support/wrong_calls.h"

namespace {

constexpr double root = std::numbers::sqrt2;
constexpr double twoTo40 = 0x1p40;

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
    Grid signal;  // of at least 7 levels
    Grid image;   // of at least 3 levels
};

const std::vector<Treatment> treatments = {
    {"wpt", "iwpt", "dwt", column(daublet4), noisyGrid(640, 1), noisyGrid(16, 24)},
    {"wpt", "iwpt", "dwt", splines(), noisyGrid(256, 1), noisyGrid(8, 8)},
    {"wpts", "iwpts", "dwts", haar(), noisyGrid(131, 1), noisyGrid(9, 15)},
    {"wpts", "iwpts", "dwts", splines(), noisyGrid(499, 1), noisyGrid(29, 18)},
    {"wpti", "iwpti", "dwti", column(daublet4), noisyGrid(512, 1), noisyGrid(32, 64)},
};

class Packets : public PackTest {
 protected:
    // One level of the transform, its four parts (two of a signal) put where the positions' parities
    // say: the low-pass part comes second below an odd position.
    void splitByHand(const Treatment& treatment, const TestPacket& parent, const Grid& level, Grid& next,
                     const Arguments& more) {
        const Grid packet = level.part(placeOf(level.rows, level.cols, parent));
        const Arguments arguments = joined({packet.value(), 1, treatment.filter}, more);
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

    void expectRepeatedSteps(const Treatment& treatment, Grid level, int levels, const Arguments& more = {}) {
        SCOPED_TRACE(testing::Message() << treatment.split << " of " << level.rows << " x " << level.cols);
        const Arguments arguments = joined({level.value(), levels, treatment.filter}, more);
        const Value table = host.call(pack(), treatment.split, arguments);
        ASSERT_EQ(table.rows(), levels + 1);
        ASSERT_EQ(table.cols(), 1);
        EXPECT_TRUE(same(table.nested(0, 0), level.value()));
        for (int j = 1; j <= levels; ++j) {
            Grid next = {level.rows, level.cols, Numbers(level.values.size(), NaN)};
            for (const TestPacket& parent : wholeLevel(level.dimensions(), j - 1))
                splitByHand(treatment, parent, level, next, more);
            expectNear(table.nested(j, 0).reals(), next.values, 1e-13);
            level = next;
        }
    }

    // The basis form, and extract_basis, hold the table's packets; the inverse restores the data.
    void expectBases(const Treatment& treatment, const Grid& data, int levels,
                     const std::vector<Tiling>& tilings) {
        SCOPED_TRACE(treatment.split);
        const Value read = strided(data.rows, data.cols, data.values);
        const Value table = call(treatment.split, read, levels, treatment.filter);
        for (const Tiling& tiling : tilings) {
            const Value expected = picked(table, tiling).value();
            const Value basis = basisOf(data.dimensions(), tiling);
            const Value coefficients = call(treatment.split, read, basis, treatment.filter);
            EXPECT_TRUE(same(coefficients, expected));
            EXPECT_TRUE(same(call("extract_basis", table, basis), expected));
            expectNear(numbers(treatment.merge, coefficients, basis, treatment.filter), data.values, 1e-12);
        }
    }
};

TEST_F(Packets, AreRepeatedStepsOfOneLevel) {
    for (const Treatment& treatment : treatments) {
        expectRepeatedSteps(treatment, treatment.signal, 7);
        expectRepeatedSteps(treatment, treatment.image, 3);
    }
}

TEST_F(Packets, UseOffsetsAndFlipsAtEveryStep) {
    for (const Grid& data : {noisyGrid(32, 1), noisyGrid(8, 16)}) {
        expectRepeatedSteps(treatments[0], data, 3, {-5});
        expectRepeatedSteps(treatments[0], data, 3, {2, 1});
        expectRepeatedSteps(treatments[1], data, 3, {row({1, -3}), row({0, 1})});
        const Value basis = basisOfLevel(data.dimensions(), 3);
        for (const Arguments& more : {Arguments{row({-2, -1})}, {row({-2, -1}), row({1, 1})}}) {
            const auto with = [&](const Value& first) { return joined({first, basis, splines()}, more); };
            const Value back = host.call(pack(), "iwpt", with(host.call(pack(), "wpt", with(data.value()))));
            expectNear(back.reals(), data.values, 1e-13);
        }
    }
}

TEST_F(Packets, OfEveryBasisAreThoseOfTheTableAndRestoreTheData) {
    ASSERT_EQ(allTilings(1, 4).size(), 677u);
    ASSERT_EQ(allTilings(2, 2).size(), 17u);
    for (const Treatment& treatment : treatments) {
        expectBases(treatment, treatment.signal, 4, allTilings(1, 4));
        expectBases(treatment, treatment.image, 2, allTilings(2, 2));
        // Deeper ones, in any order, and with rows that stand twice.
        std::vector<Tiling> ofSignals;
        std::vector<Tiling> ofImages;
        for (unsigned seed = 1; seed <= 20; ++seed) {
            ofSignals.push_back(randomTiling(1, 7, seed));
            ofImages.push_back(randomTiling(2, 3, seed));
            if (seed % 2 == 0) ofSignals.back().push_back(ofSignals.back().front());
            if (seed % 2 == 0) ofImages.back().insert(ofImages.back().begin(), ofImages.back().back());
        }
        expectBases(treatment, treatment.signal, 7, ofSignals);
        expectBases(treatment, treatment.image, 3, ofImages);
    }
}

TEST_F(Packets, OfLevelZeroAreTheData) {
    const auto expectData = [&](const Treatment& treatment, const Value& data) {
        const Value whole = basisOfLevel(data.cols() < 2 ? 1 : 2, 0);
        EXPECT_TRUE(same(call(treatment.split, data, 0, treatment.filter), Value::table({data})));
        EXPECT_TRUE(same(call(treatment.split, data, whole, treatment.filter), data));
        EXPECT_TRUE(same(call(treatment.merge, data, whole, treatment.filter), data));
    };
    for (const Treatment& treatment : treatments) {
        for (const Value& data : {signal(5), image(3, 4)}) expectData(treatment, data);
        if (treatment.split == std::string("wpti")) continue;
        for (const Value& empty : {column({}), Value::matrix(0, 3, Numbers{})}) expectData(treatment, empty);
    }
    // A row is an image of one row.
    EXPECT_TRUE(same(call("wpt", row({1, 2, 3, 4}), 0, haar()).nested(0, 0), row({1, 2, 3, 4})));
}

// --- errors ---

// Unsuitable for the symmetric and the interval transforms, which look at it last.
Value threeTaps() {
    return column({0.6, 0.8, 0.1});
}

// Of a signal: packets 1 of all levels down to the depth, and packet 0 of the deepest.
Value comb(int depth) {
    std::vector<Numbers> rows;
    for (int j = 1; j <= depth; ++j) rows.push_back({double(j), 1.0});
    rows.push_back({double(depth), 0.0});
    return basisRows(rows);
}

struct WrongBasis {
    Value basis;
    const char* message;
};

// Bases that no data has, and the complaint about their entries.
std::vector<WrongBasis> wrongEntries(int dimensions) {
    const auto rows = [=](const std::vector<Numbers>& values) { return basisRows(dimensions, values); };
    std::vector<WrongBasis> bases = {
        {rows({{0.5, 0}}), notWhole},         {rows({{-0.5, NaN}}), notWhole},
        {rows({{-1, 0.5}}), noBasis},         {rows({{-inf, 0}}), noBasis},
        {rows({{0, NaN}}), notWhole},         {rows({{0, -0.5}}), notWhole},
        {rows({{0, -1}}), noBasis},           {rows({{0, 1}}), noBasis},
        {rows({{0, inf}}), noBasis},          {rows({{1, 2}, {1, 0.5}}), noBasis},
        {rows({{1, 0.5}, {1, 2}}), notWhole}, {rows({{1, 0}, {1, 2}}), noBasis},
        {rows({{0, 0}, {NaN, 0}}), notWhole},
    };
    if (dimensions == 1) return bases;
    bases.push_back({basisRows({{0, 1, NaN}}), noBasis});
    bases.push_back({basisRows({{0, 0, NaN}}), notWhole});
    bases.push_back({basisRows({{0, 0, 1}}), noBasis});
    bases.push_back({basisRows({{0, 0, -1}}), noBasis});
    return bases;
}

// Levels beyond all data; of a signal that is the complaint, of an image this one about the entries.
std::vector<WrongBasis> farBelow(int dimensions) {
    const auto at = [=](double level, double position) { return basisRows(dimensions, {{level, position}}); };
    return {
        {at(twoTo32, 0), noBasis},       {at(inf, 0), noBasis},         {at(1e300, NaN), noBasis},
        {at(40.5, 0), notWhole},         {at(2000, NaN), notWhole},     {at(40, twoTo40), noBasis},
        {at(twoTo32 - 1, inf), noBasis}, {at(twoTo32 - 1, 0), tooDeep}, {at(1024, 1e308), tooDeep},
        {at(40, twoTo40 - 1), tooDeep},  {at(63, 0), tooDeep},
    };
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
    // Families that are none: of packets with different parents, or with one that stands twice.
    if (dimensions == 1) {
        bases.push_back(basisRows({{2, 0}, {2, 3}, {1, 1}}));
        bases.push_back(basisRows({{1, 0}, {2, 0}, {2, 1}}));
    } else {
        bases.push_back(
            basisRows({{2, 0, 0}, {2, 0, 1}, {2, 1, 0}, {2, 3, 3}, {1, 0, 1}, {1, 1, 0}, {1, 1, 1}}));
        bases.push_back(
            basisRows({{1, 0, 0}, {1, 0, 1}, {1, 1, 0}, {2, 0, 0}, {2, 0, 1}, {2, 1, 0}, {2, 1, 1}}));
    }
    return bases;
}

void addLevels(std::vector<ErrorCase>& table) {
    for (const char* name : {"wpt", "wpts", "wpti"}) {
        const WrongCalls wrong(table, name, {threeTaps()});
        wrong.give(notArray, 1, {{unrealColumn(), unreal}, {nestedColumn(), -1}});
        wrong.give(notReal, 2, {{signal(8), std::complex(-1.0, NaN)}, {image(8, 8), unreal}});
        wrong.give(notWhole, 2, {{signal(8), 2.5}, {signal(8), twoTo32 - 1.5}});
        for (const double level : {-0.5, NaN, twoTo32 + 0.5, 4.0, 64.0, twoTo32 - 1})
            wrong.give(noLevel, 2, {{signal(8), level}, {image(8, 8), level}});
        wrong.give(noLevel, 2, {{column({}), 1}, {image(4, 0), 64}, {row({1, 2, 3, 4}), 1}});
        wrong.give("illegal context", 2, {{signal(8), Value::ofTag(16)}});
        wrong.give("EfiMustBeScalarOrArray", 2, {{signal(8), "2"}});
    }
    const WrongCalls wpt(table, "wpt", {haar()});
    wpt.give(noLevel, 2, {{signal(12), 3}, {image(4, 6), 2}, {image(6, 4), 2}});
    const WrongCalls wpts(table, "wpts", {column(daublet4)});
    wpts.give(notSymmetric, 3, {{signal(8), 3}});
    wpts.give(noLevel, 2, {{signal(7), 3}, {image(8, 3), 2}, {image(3, 8), 2}});
    const WrongCalls refused(table, "wpti", {haar()});
    refused.give(noInterval, 3, {{signal(64), 1}});
    refused.give(noLevel, 2, {{signal(65), 1}});
    const WrongCalls wpti(table, "wpti", {column(daublet4)});
    wpti.give(noLevel, 2, {{signal(1), 0}, {image(1, 2), 0}, {column({}), 0}});
    // The last step finds fewer samples than it needs.
    wpti.give(noLevel, 2, {{signal(16), 3}, {image(16, 32), 3}, {image(8, 2), 2}});
}

void addBases(const WrongCalls& wrong) {
    wrong.give(notArray, 1, {{unrealColumn(), unrealRows()}, {nestedColumn(), basisOfLevel(1, 9)}});
    wrong.give(notArray, 2, {{image(8, 8), unrealRows()}, {signal(8), nestedColumn()}});
    for (const Value& basis : {column({0}), basisRows({{NaN, NaN, NaN}})})
        wrong.give(notOneDimensional, 2, {{signal(8), basis}, {image(3, 0), basis}});
    for (const Value& basis : {basisRows({{NaN, NaN}}), Value::matrix(1, 4, Numbers(4))})
        wrong.give(notTwoDimensional, 2, {{image(8, 8), basis}, {row({1, 2}), basis}});
    wrong.give(tooDeep, 2, {{signal(16), comb(40)}, {column({}), basisOfLevel(1, 1)}});
    for (const Value& data : {image(0, 4), image(1, 8)}) wrong.give(tooDeep, 2, {{data, basisOfLevel(2, 1)}});
    for (const int dimensions : {1, 2}) {
        const Value data = square(dimensions, 16);
        for (const auto& [basis, message] : wrongEntries(dimensions)) wrong.give(message, 2, {{data, basis}});
        // A signal's depth is looked at before its entries, an image's after them.
        for (const auto& [basis, message] : farBelow(dimensions))
            wrong.give(dimensions == 1 ? tooDeep : message, 2, {{data, basis}});
        for (const Value& basis : untiled(dimensions)) wrong.give(noBasis, 2, {{data, basis}});
    }
}

// What depends on how each treats the ends.
void addDepths(std::vector<ErrorCase>& table, const std::string& prefix) {
    for (const char* name : {"wpt", "wpti"}) {
        const WrongCalls wrong(table, prefix + name, {threeTaps()});
        wrong.give(tooDeep, 2, {{signal(24), basisOfLevel(1, 4)}, {signal(12), basisRows({{3, 0.5}})}});
        wrong.give(tooDeep, 2, {{image(12, 8), basisOfLevel(2, 3)}, {image(8, 12), basisRows({{3, 0, 0}})}});
        wrong.give(notWhole, 2, {{image(8, 12), basisRows({{3, 0.5, 0}})}});
    }
    const WrongCalls wpts(table, prefix + "wpts", {threeTaps()});
    wpts.give(tooDeep, 2, {{signal(15), basisOfLevel(1, 4)}, {image(15, 16), basisOfLevel(2, 4)}});
    wpts.give(notSymmetric, 3, {{signal(12), basisOfLevel(1, 2)}, {image(5, 4), basisOfLevel(2, 1)}});
    const WrongCalls refused(table, prefix + "wpti", {threeTaps()});
    refused.give(noInterval, 3, {{signal(64), basisOfLevel(1, 2)}, {image(64, 64), basisOfLevel(2, 2)}});
    const WrongCalls wpti(table, prefix + "wpti", {column(daublet4)});
    wpti.give(tooDeep, 2, {{signal(16), basisOfLevel(1, 3)}, {image(16, 16), basisOfLevel(2, 3)}});
    wpti.give(tooDeep, 2, {{signal(1), basisOfLevel(1, 0)}});
}

std::vector<ErrorCase> packetErrors() {
    std::vector<ErrorCase> table;
    for (const char* name : {"wpt", "iwpt", "wpts", "iwpts"}) {
        const WrongCalls wrong(table, name);
        wrong.give(notArray, 3, {{unrealColumn(), unrealRows(), unrealColumn()}});
        wrong.give(noFilter, 3, {{unrealColumn(), unrealRows(), column({})}});
        addBases({table, name, {threeTaps()}});
    }
    for (const char* name : {"wpt", "iwpt"}) addWrongWavelets({table, name}, {unrealColumn(), unrealRows()});
    addLevels(table);
    for (const char* prefix : {"", "i"}) addDepths(table, prefix);
    return cases(table);
}

INSTANTIATE_TEST_SUITE_P(Packets, Errors, testing::ValuesIn(packetErrors()), nameOfError);

// Whatever the levels say, the memory asked for is some bytes a row.
TEST_F(Packets, AbsurdBasesCostNoMoreThanTheirRows) {
    const Value cost = Value::function(efihost::RealCallback([](double x) { return x; }));
    for (const int dimensions : {1, 2}) {
        const Value data = square(dimensions, 16);
        std::vector<Value> bases = {basisRows(dimensions, std::vector<Numbers>(5000, {30, 5}))};
        for (const auto& [basis, message] : farBelow(dimensions)) bases.push_back(basis);
        if (dimensions == 1) bases.push_back(comb(5000));
        for (const Value& basis : bases) {
            for (const auto& [name, last] : {std::pair("wpt", haar()), {"iwpts", haar()}, {"evalbs", cost}}) {
                const long before = allocatedBytes();
                EXPECT_NE(complaint(name, data, basis, last), "no error") << name;
                EXPECT_LT(allocatedBytes() - before, 20000 + 200L * basis.rows()) << name;
            }
        }
    }
}

}  // namespace
