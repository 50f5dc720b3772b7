// Errors beyond the examples in the functions' descriptions, which a test in Python runs by themselves and in
// pairs: numbers at the ends of their ranges, the second side of an image, data that is short or empty, and
// all that can be wrong with wavelets, bases and tables.
#include "support/packets.h"

namespace {

constexpr double largest = 0x1p32 - 1;

constexpr const char* notWhole = "must be integer";
constexpr const char* noLevel = "invalid level";
constexpr const char* noIndex = "invalid packet index";
constexpr const char* noFilter = "filter unimplemented";
constexpr const char* noInterval = "interval wavelets unimplemented";
constexpr const char* noBasis = "invalid packet basis";
constexpr const char* tooDeep = "invalid level in packet basis";
constexpr const char* notTwoDimensional = "must be 2 dimensional packet basis";
constexpr const char* noTable = "invalid packet table";
constexpr const char* noMemory = "out of memory";

Value matrix(int rows, int cols, double value = 0.5) {
    return Grid{rows, cols, Numbers(static_cast<std::size_t>(rows * cols), value)}.value();
}

class Errors : public PackTest {
 protected:
    // Each of the calls says the same about the argument at a place.
    void expect(const char* message, int place, const std::vector<std::string>& functions,
                const std::vector<Arguments>& calls) {
        const std::string expected = message + (" (" + std::to_string(place) + ")");
        for (const std::string& name : functions) {
            for (const Arguments& call : calls)
                EXPECT_EQ(complaintOf(host.callRaw(pack(), name, call)), expected) << name;
        }
    }

    const Value daublet4 = call("daublet", 4);
    const Value function = Value::function([](const Arguments&) -> Value { throw "called"; });
};

}  // namespace

TEST_F(Errors, OfNumbersAtTheEndsOfTheirRanges) {
    const Value x = signal(8);
    const Value y = image(8, 4);
    for (const double level : {4.0, 32.0, 64.0, largest}) {
        expect(noLevel, 2, {"dwt", "idwt", "dwts", "dwti", "wpt", "wpts", "wpti"}, {{x, level, daublet4}});
        expect(noLevel, 2, {"cpt", "get_smooth"}, {{x, level}});
        expect(noLevel, 2, {"icpt"}, {{x, level, basisOfLevel(1, 0)}});
        expect(noLevel, 2, {"put_subband"}, {{x, level, 0, x}});
        expect(noLevel, 2, {"get_subband2d"}, {{y, level, 0, 0}});
        expect(noLevel, 2, {"waveterp"}, {{0, x, level, 0, haar()}});
        expect(noLevel, 3, {"swaveterp"}, {{0, x, level, 0, haar()}});
        expect(noLevel, 4, {"waveterp2d", "swaveterp2d"}, {{0, 0, y, level, 0, 0, haar()}});
    }
    expect(noIndex, 3, {"get_subband"}, {{x, 1, largest}});
    expect(noIndex, 3, {"put_subband"}, {{x, 1.5, 2.5, signal(4)}, {x, 1, largest, signal(4)}});
    expect(noIndex, 3, {"get_subband2d"}, {{y, 1, largest, 0}, {y, 1, inf, 0}, {y, 0, 1, 0}});
    expect(noLevel, 4, {"waveterp"}, {{0, x, 1.7, 2, haar()}, {0, x, 1, largest, haar()}});
    expect(noLevel, 4, {"swaveterp"}, {{0, x, 1.7, 2.5, haar()}, {0, x, 1, largest, haar()}});
    expect(notWhole, 4, {"swaveterp"}, {{0, x, 1, 1.5, haar()}});
    expect(noIndex, 5, {"waveterp2d"}, {{0, 0, y, 1, largest, 0, haar()}, {0, 0, y, 1, 2, 2, haar()}});
    expect(noLevel, 2, {"wavelet"}, {{0, -0x1p31 - 1, 0, 0, haar()}});
    expect(noLevel, 3, {"wavelet"}, {{0, 0, -0x1p31 - 1, 0, haar()}});
    expect(noMemory, 0, {"wavelet"}, {{0, 0, 0, 0x1p27, haar()}});
    // Too large to tell whole from broken by adding a half.
    expect("must be positive integer", 6, {"wavelet2d"}, {{0, 0, 0, 0, 0, 0x1p52 + 1, 0, haar()}});
    expect(noMemory, 0, {"create_level"}, {{11, 2}, {32, 1}, {32, 2}, {largest, 1}, {largest, 2}});
    expect(noMemory, 0, {"wavebs"}, {{largest, 1}, {largest, 2}});
    expect("must be even integer", 1, {"daublet", "symmlet", "coiflet"}, {{largest}});
    for (const double length : {22.0, 32.0, largest - 1, largest + 1, inf})
        expect(noFilter, 1, {"daublet", "symmlet", "coiflet"}, {{length}});
    expect(noFilter, 1, {"coiflet"}, {{2}, {20}, {28}});
    expect(noFilter, 0, {"Bspline"}, {{1, 2}, {2, 10}, {3, 10}});
    expect(notWhole, 2, {"Bspline"}, {{4, NaN}});
    expect("invalid 2d wavelet string", 3, {"get_detail2d"}, {{y, 0.5, ""}, {y, 0.5, "HV"}});
    expect("invalid 2d wavelet string", 4, {"mother2d"}, {{0, 0, "haar", "HV"}});
}

// Of the sides 16 and 6 the shorter one can be halved once without a rest, and twice at all.
TEST_F(Errors, OfEitherSide) {
    for (const auto& [rows, cols] : {std::pair(16, 6), {6, 16}}) {
        const Value x = image(rows, cols);
        expect(noLevel, 2, {"dwt", "dwti", "wpt", "wpti"}, {{x, 2, daublet4}});
        expect(noLevel, 2, {"dwts", "wpts"}, {{x, 3, haar()}});
        expect(tooDeep, 2, {"wpt", "iwpt", "iwpti"}, {{x, basisOfLevel(2, 2), daublet4}});
        expect(tooDeep, 2, {"wpts", "iwpts"}, {{x, basisOfLevel(2, 3), haar()}});
        expect(tooDeep, 2, {"evalbs", "applybs"}, {{x, basisOfLevel(2, 3), function}});
        expect(noTable, 1, {"evaltbl"}, {{tableOf(rows, cols, 3), function}});
        expect(noLevel, 2, {"get_subband2d"}, {{x, 3, 0, 0}});
        expect(noLevel, 2, {"cpt"}, {{x, 1}});
        expect(noLevel, 2, {"icpt"}, {{x, 2, basisOfLevel(2, 0)}});
        expect(tooDeep, 3, {"icpt"}, {{x, 1, basisOfLevel(2, 2)}});
        expect(noLevel, 4, {"waveterp2d"}, {{0, 0, x, 2, 0, 0, haar()}});
        expect(noLevel, 4, {"swaveterp2d"}, {{0, 0, x, 3, 0, 0, haar()}});
    }
    // The interval's second step finds too few samples; a packet is shorter than both halves of the bell.
    expect(noLevel, 2, {"dwti", "idwti", "wpti"}, {{image(16, 8), 2, daublet4}, {image(8, 16), 2, daublet4}});
    expect(tooDeep, 3, {"icpt"},
           {{image(16, 8), 0, basisOfLevel(2, 1)}, {image(8, 16), 0, basisOfLevel(2, 1)}});
    const Value x = image(6, 6);
    for (const Value& part : {image(2, 3), image(4, 3), image(3, 2), image(3, 4), image(9, 1)})
        expect("invalid subband dimensions", 5, {"put_subband2d"}, {{x, 1, 0, 0, part}});
}

TEST_F(Errors, OfDataThatIsShortOrEmpty) {
    for (const Value& empty : {column({}), image(0, 4), image(4, 0), image(0, 0)}) {
        for (const double level : {1.0, 32.0, 64.0, largest}) {
            expect(noLevel, 2, {"dwt", "dwts", "wpt", "wpts"}, {{empty, level, haar()}});
            expect(noLevel, 2, {"cpt"}, {{empty, level}});
        }
        const Value basis = basisOfLevel(empty.cols() < 2 ? 1 : 2, 1);
        expect(tooDeep, 2, {"iwpt", "iwpts"}, {{empty, basis, haar()}});
        expect(tooDeep, 2, {"evalbs"}, {{empty, basis, function}});
        expect(noLevel, 2, {"dwti", "wpti"}, {{empty, 0, daublet4}});
    }
    expect(noLevel, 2, {"dwts", "wpts"}, {{signal(1), 1, haar()}, {image(1, 8), 1, haar()}});
    expect(noLevel, 3, {"swaveterp"}, {{0, column({}), 1, 0, haar()}});
    expect(noLevel, 4, {"waveterp"}, {{0, column({}), 0, 1, haar()}});
    // The wavelet is looked at first by a transform, and last by packets; the last step must find as many
    // samples as the filter has taps.
    expect(noInterval, 3, {"dwti", "idwti"}, {{signal(7), 1, haar()}});
    expect(noLevel, 2, {"dwti", "wpti"}, {{signal(1), 0, daublet4}, {signal(16), 4, daublet4}});
    const Value coiflet6 = call("coiflet", 6);
    expect(noInterval, 3, {"wpti"}, {{signal(16), 2, coiflet6}, {signal(16), basisOfLevel(1, 2), coiflet6}});
    expect(noLevel, 2, {"wpti"}, {{signal(16), 3, coiflet6}});
    expect(tooDeep, 2, {"iwpti"}, {{signal(16), basisOfLevel(1, 3), coiflet6}});
}

TEST_F(Errors, OfWavelets) {
    const auto refuse = [&](const char* message, int place, const std::vector<Arguments>& wavelets) {
        for (const Arguments& wavelet : wavelets)
            expect(message, place, {"dwt"}, {joined({unrealColumn(), -1}, wavelet)});
    };
    refuse("must be real array", 3, {{nestedColumn()}});
    refuse(noFilter, 3, {{column({})}, {matrix(0, 2)}, {matrix(2, 0)}, {matrix(2, 3)}, {matrix(1, 3)}});
    refuse(noFilter, 3, {{matrix(101, 1)}, {matrix(101, 2)}, {matrix(2, 1, NaN)}, {matrix(2, 2, -inf)}});
    refuse(noFilter, 3, {{outer({0.5, 0.5}, {1, 0}).value()}, {outer({0.5, 0.5}, {0, 1}).value()}});
    const Value pair = matrix(3, 2);
    const Value none = row({0, 0});
    for (const double offset : {0.5, NaN, inf, -inf, 0x1p24 + 1, -0x1p24 - 1, 0x1p32})
        refuse(noFilter, 3, {{haar(), offset}, {pair, row({offset, 0})}, {pair, row({0, offset}), none}});
    for (const double flip : {0.5, 2.0, -1.0, NaN})
        refuse(noFilter, 3, {{haar(), 0, flip}, {pair, none, row({flip, 0})}, {pair, none, row({0, flip})}});
    for (const Value& shape : {none, column({0, 0}), column({}), matrix(1, 0)})
        refuse(noFilter, 3, {{haar(), shape}, {haar(), 0, shape}});
    for (const Value& shape : {Value(0), matrix(2, 2, 0.0), matrix(0, 2)})
        refuse(noFilter, 3, {{pair, shape}, {pair, none, shape}});
}

TEST_F(Errors, OfEntriesOfBases) {
    for (const int dimensions : {1, 2}) {
        const auto refuse = [&](const char* message, const std::vector<std::vector<Numbers>>& bases) {
            for (const std::vector<Numbers>& rows : bases)
                expect(message, 2, {"iwpt"}, {{square(dimensions, 16), basisRows(dimensions, rows), haar()}});
        };
        refuse(notWhole, {{{0.5, 0}}, {{-0.5, NaN}}, {{0, NaN}}, {{0, -0.5}}, {{1, 0.5}, {1, 2}}});
        refuse(noBasis, {{{-1, 0.5}}, {{0, -1}}, {{0, 1}}, {{0, inf}}, {{1, 2}, {1, 0.5}}});
        // Of a signal the packet transforms look at the depth first.
        const bool isSignal = dimensions == 1;
        refuse(isSignal ? tooDeep : notWhole, {{{40.5, 0}}, {{2000, NaN}}});
        refuse(isSignal ? tooDeep : noBasis, {{{0x1p32, 0}}, {{1e300, NaN}}, {{40, 0x1p40}}});
        refuse(tooDeep, {{{largest, 0}}, {{1024, 1e308}}, {{40, 0x1p40 - 1}}});
    }
    expect(noBasis, 2, {"evalbs"}, {{signal(16), basisRows({{largest, 0}}), function}});
    for (const Numbers& packet : {Numbers{0, 0, 1}, {0, 0, -1}, {0, 1, NaN}})
        expect(noBasis, 2, {"iwpt"}, {{image(16, 16), basisRows({packet}), haar()}});
    expect(notWhole, 2, {"iwpt"}, {{image(16, 16), basisRows({{0, 0, NaN}}), haar()}});
    expect("must be real array", 2, {"iwpt"}, {{signal(8), nestedColumn(), haar()}});
    // The number of columns comes before them.
    const Value two = matrix(1, 2, NaN);
    const Value four = matrix(1, 4, NaN);
    expect("must be 1 dimensional packet basis", 2, {"iwpt"},
           {{signal(8), matrix(1, 3, NaN), haar()}, {image(8, 0), matrix(1, 3, NaN), haar()}});
    expect(notTwoDimensional, 2, {"iwpt"}, {{row({1, 2}), two, haar()}, {image(8, 8), four, haar()}});
    expect(notTwoDimensional, 2, {"evalbs"}, {{row({1, 2}), two, function}});
    expect(notTwoDimensional, 1, {"basis_display2d"}, {{two}, {four}});
    expect(noBasis, 2, {"extract_basis"}, {{tableOf(8, 1, 1), column({NaN})}, {tableOf(8, 1, 1), four}});
    expect("too many levels to be displayed", 1, {"basis_display2d"},
           {{basisRows({{NaN, 0, 0}, {8.5, NaN, -1}})}});
    expect(notWhole, 1, {"basis_display2d"}, {{basisRows({{7.5, 0, 0}})}});
}

// Of all subsets of some packets those tile that are known to.
TEST_F(Errors, OfBasesWithGapsOrOverlaps) {
    const auto countTilings = [&](const Value& data, const Tiling& packets) {
        int tilings = 0;
        for (unsigned subset = 1; subset < 1U << packets.size(); ++subset) {
            Tiling some;
            for (std::size_t i = 0; i < packets.size(); ++i) {
                if (subset >> i & 1) some.push_back(packets[i]);
            }
            const std::string said = complaint("iwpt", data, basisOf(data.cols() == 1 ? 1 : 2, some), haar());
            EXPECT_TRUE(said == "no error" || said == "invalid packet basis (2)") << said;
            tilings += said == "no error";
        }
        return tilings;
    };
    EXPECT_EQ(countTilings(signal(16), {{0, 0}, {1, 0}, {1, 1}, {2, 0}, {2, 1}, {2, 2}, {2, 3}}), 5);
    Tiling blocks = wholeLevel(2, 1);
    for (const TestPacket& more : Tiling{{0, 0, 0}, {2, 0, 0}, {2, 0, 1}, {2, 1, 0}, {2, 1, 1}, {2, 3, 3}})
        blocks.push_back(more);
    EXPECT_EQ(countTilings(image(16, 16), blocks), 3);
    expect(noBasis, 2, {"iwpt"}, {{signal(16), matrix(0, 2), haar()}, {image(16, 16), matrix(0, 3), haar()}});
}

// As a user might damage the table of a signal of 8 samples.
TEST_F(Errors, OfTables) {
    const Value x = signal(8);
    Value unreal = Value::column(Numbers{0, 0}, Numbers{0, 1});
    unreal.nest(0, 0, x);
    expect("must be real vector", 1, {"evaltbl"}, {{unreal, function}});
    for (const int level : {0, 1}) {
        Value table = column({5, 5});
        table.nest(level, 0, x);
        expect(noTable, 1, {"evaltbl"}, {{table, function}});
    }
    const auto refuse = [&](const char* message, const std::vector<Arguments>& tables) {
        for (const Arguments& cells : tables)
            expect(message, 1, {"evaltbl"}, {{Value::table(cells), function}});
    };
    refuse(noTable, {{}, Arguments(5, x), Arguments(33, x), Arguments(5000, x), {x, "text", x, x, x}});
    refuse(noTable,
           {{x, signal(7), "text"}, {x, row(noise(8))}, {image(8, 4), x}, {image(8, 4), image(4, 8)}});
    refuse(noTable, {{signal(0), signal(0)}, {image(1, 8), image(1, 8)}, {Value::table({x, x})}});
    refuse("must be array", {{"text", x, x, x, x}, {x, "text", signal(7)}, {x, 5, x}});
}
