// wpt, wpts, wpti and their inverses: packets against repeated transforms of one level, and every
// admissible basis there and back.
#include <numbers>

#include "support/failing_new.h"
#include "support/packets.h"

namespace {

constexpr double root = std::numbers::sqrt2;

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

// Whatever the levels say, the memory asked for is some bytes a row.
TEST_F(Packets, AbsurdBasesCostNoMoreThanTheirRows) {
    const Value cost = Value::function(efihost::RealCallback([](double x) { return x; }));
    std::vector<Numbers> comb = {{5000, 0}};
    for (int j = 1; j <= 5000; ++j) comb.push_back({double(j), 1});
    for (const int dimensions : {1, 2}) {
        const Value data = square(dimensions, 16);
        for (const std::vector<Numbers>& rows : {comb,
                                                 std::vector<Numbers>(5000, {30, 5}),
                                                 {{40, 0x1p40 - 1}},
                                                 {{4294967295, 0}},
                                                 {{1e300, 0}}}) {
            const Value basis = basisRows(dimensions, rows);
            for (const auto& [name, last] : {std::pair("wpt", haar()), {"iwpts", haar()}, {"evalbs", cost}}) {
                const long before = allocatedBytes();
                EXPECT_NE(complaint(name, data, basis, last), "no error") << name;
                EXPECT_LT(allocatedBytes() - before, 20000 + 200L * basis.rows()) << name;
            }
        }
    }
}

}  // namespace
