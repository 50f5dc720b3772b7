// evaltbl, evalbs, applytbl, applybs with user functions of all kinds, extract_basis and
// basis_display2d; and what they say to tables and bases that a user has damaged.
#include <algorithm>
#include <numeric>

#include "support/packets.h"
#include "support/robustness.h"
#include "support/wrong_calls.h"

namespace {

using efihost::Callback;

Value functionOf(std::function<Value(const Value& packet)> function) {
    return Value::function(Callback([=](const std::vector<Value>& arguments) {
        EXPECT_EQ(arguments.size(), 1u);
        return function(arguments[0]);
    }));
}

Value always(const Value& answer) {
    return Value::function(Callback([=](const auto&) { return answer; }));
}

Value unchanged() {
    return functionOf([](const Value& packet) { return packet; });
}

Value sum() {
    return functionOf([](const Value& packet) {
        double total = 0.0;
        for (const double x : packet.reals()) total += x;
        return Value(total);
    });
}

Value tableOf(int rows, int cols, int deepest) {
    std::vector<Value> cells;
    for (int j = 0; j <= deepest; ++j)
        cells.push_back(noisyGrid(rows, cols, static_cast<unsigned>(j + 1)).value());
    return Value::table(cells);
}

Value packetOf(const Value& data, const TestPacket& packet) {
    return Grid::of(data).part(placeOf(data.rows(), data.cols(), packet)).value();
}

struct Size {
    int rows;
    int cols;
    int levels;
};
constexpr Size sizes[] = {{8, 1, 3}, {11, 1, 3}, {5, 1, 2}, {4, 8, 2}, {6, 5, 2}, {1, 3, 0}, {9, 10, 3}};

class PacketFunctions : public PackTest {
 protected:
    // Lists of the sums and of the packets themselves, which are of levels of a table.
    void expectLists(const Value& sums, const Value& packets, const Tiling& tiling, const Value& table) {
        const int last = table.nested(0, 0).cols() == 1 ? 2 : 3;
        ASSERT_EQ(sums.rows(), static_cast<int>(tiling.size()));
        EXPECT_FALSE(sums.anyNested());
        for (int r = 0; r < sums.rows(); ++r) {
            const TestPacket& packet = tiling[static_cast<std::size_t>(r)];
            const double places[] = {double(packet.level), double(packet.row), double(packet.col)};
            for (int c = 0; c < last; ++c) {
                EXPECT_EQ(sums.at(r, c), places[c]);
                EXPECT_EQ(packets.at(r, c), places[c]);
            }
            const Value expected = packetOf(table.nested(packet.level, 0), packet);
            EXPECT_TRUE(same(packets.nested(r, last), expected));
            const Numbers values = expected.reals();
            EXPECT_NEAR(sums.at(r, last).real(), std::accumulate(values.begin(), values.end(), 0.0), 1e-14);
        }
    }
};

// A host without memory for an error value, wherever in a call that is.
TEST(HostWithoutErrors, GetsNoResult) {
    class Wordless : public TestHost {
        Anyval* makeError(const char*, int) override { return nullptr; }
    };
    const Value data = signal(8);
    const Value table = tableOf(8, 1, 2);
    const Value basis = basisOfLevel(1, 1);
    const std::pair<const char*, Arguments> calls[] = {
        {"evaltbl", {table, sum()}},
        {"evalbs", {data, basis, sum()}},
        {"applytbl", {table, unchanged()}},
        {"applybs", {data, basis, unchanged()}},
        {"extract_basis", {table, basis}},
        {"best_basis", {table, Value::function([](double x) { return x; })}},
        {"wpt", {data, 2, haar()}},
        {"cpt", {data, 1}},
        {"dwt", {data, 2, haar()}},
        {"mother", {0.5, 0, 0, "daub4"}},
        {"get_detail", {data, 1}},
        {"wavebs", {3, 2}}};
    Wordless host;
    for (const auto& [name, arguments] : calls) {
        bool happened = true;
        for (int k = 1; happened; ++k) {
            host.failAllocation(k);
            const Value result = host.callRaw(pack(), name, arguments);
            happened = host.happened();
            EXPECT_EQ(!result, happened) << name << k;
        }
    }
}

// However many packets there are, few values are alive at a time: neither packets nor lists pile up.
TEST_F(PacketFunctions, LendOnePacketAtATime) {
    const Value table = tableOf(256, 1, 8);
    const Value basis = basisOfLevel(1, 8);
    std::size_t most = 0;
    const auto watched = [&](const Value& function) {
        return functionOf([&most, function](const Value& packet) {
            most = std::max(most, efihost::liveValues());
            return function ? function : packet;
        });
    };
    const std::size_t before = efihost::liveValues();
    call("evaltbl", table, watched(7));
    call("evalbs", signal(256), basis, watched(7));
    call("applytbl", table, watched({}));
    call("applybs", signal(256), basis, watched({}));
    EXPECT_LT(most, before + 10);
}

TEST_F(PacketFunctions, AreEvaluatedOnEveryPacketOfATable) {
    for (const auto& [rows, cols, levels] : sizes) {
        const Value table = tableOf(rows, cols, levels);
        Tiling all;
        for (int level = 0; level <= levels; ++level) {
            for (const TestPacket& packet : wholeLevel(cols == 1 ? 1 : 2, level)) all.push_back(packet);
        }
        expectLists(call("evaltbl", table, sum()), call("evaltbl", table, unchanged()), all, table);
    }
}

// In the order of its rows, each row for itself.
TEST_F(PacketFunctions, AreEvaluatedOnTheRowsOfABasis) {
    for (const auto& [rows, cols, levels] : sizes) {
        const Grid data = noisyGrid(rows, cols, 5);
        const Value read = strided(rows, cols, data.values);
        const Value table =
            Value::table(std::vector<Value>(static_cast<std::size_t>(levels) + 1, data.value()));
        for (unsigned seed = 1; seed <= 5; ++seed) {
            Tiling tiling = randomTiling(data.dimensions(), levels, seed);
            tiling.push_back(tiling.front());
            const Value basis = basisOf(data.dimensions(), tiling);
            expectLists(call("evalbs", read, basis, sum()), call("evalbs", read, basis, unchanged()), tiling,
                        table);
        }
    }
}

TEST_F(PacketFunctions, ReplaceEveryPacket) {
    const auto doubled = [](const Value& array) {
        Grid grid = Grid::of(array);
        for (double& x : grid.values) x *= 2.0;
        return grid.value();
    };
    const Value doubling = functionOf(
        [&](const Value& packet) { return strided(packet.rows(), packet.cols(), doubled(packet).reals()); });
    for (const auto& [rows, cols, levels] : sizes) {
        const Value table = tableOf(rows, cols, levels);
        const Value all = call("applytbl", table, doubling);
        for (int j = 0; j <= levels; ++j) EXPECT_TRUE(same(all.nested(j, 0), doubled(table.nested(j, 0))));

        const int dimensions = cols == 1 ? 1 : 2;
        const Value basis = basisOf(dimensions, randomTiling(dimensions, levels, 3));
        const Value data = table.nested(0, 0);
        EXPECT_TRUE(same(call("applybs", data, basis, doubling), doubled(data)));
    }
}

// A repeated row: the function is called again, with the packet as it was.
TEST_F(PacketFunctions, OfRepeatedRowsSeeTheOriginal) {
    int calls = 0;
    const Value function = functionOf([&](const Value& packet) {
        Numbers values = packet.reals();
        for (double& x : values) x += 10.0 * ++calls;
        return column(values);
    });
    const Value basis = basisRows({{1, 0}, {1, 1}, {1, 0}});
    EXPECT_EQ(numbers("applybs", column({1, 2}), basis, function), Numbers({31, 22}));
    EXPECT_EQ(calls, 3);
}

// The answers of a function, what evaltbl and evalbs say to them, and what applytbl and applybs.
TEST_F(PacketFunctions, AnswersAreJudged) {
    constexpr const char* notForEval = "wavelet function must return real scalar or real array";
    constexpr const char* notForApply = "wavelet function must return real array";
    constexpr const char* misfit = "wavelet function input and output array size mismatch";
    const Numbers four = {1, 2, 3, 4};
    const std::vector<std::tuple<Value, const char*, const char*>> answers = {
        {"text", notForEval, notForApply},
        {Value(), notForEval, notForApply},
        {std::complex(1.0, NaN), notForEval, notForApply},
        {unrealColumn(), notForEval, notForApply},
        {nestedColumn(), notForEval, notForApply},
        {std::complex(1.0, -0.0), nullptr, notForApply},
        {row(four), nullptr, misfit},
        {column({1, 2, 3}), nullptr, misfit},
        {Value::matrix(4, 2, Numbers(8)), nullptr, misfit},
        {Value::matrix(4, 0, Numbers{}), nullptr, misfit},
        {Value::column(four, Numbers{0, 0, -0.0, 0}), nullptr, nullptr},
        {Value::adopt(4, 1, nullptr), nullptr, nullptr},
        {column({NaN, inf, -inf, 0}), nullptr, nullptr},
    };
    for (const auto& [answer, eval, apply] : answers) {
        const Value f = always(answer);
        const auto expect = [&](const char* name, const Arguments& before, const char* message) {
            const std::string place = " (" + std::to_string(before.size() + 1) + ")";
            EXPECT_EQ(complaintOf(host.callRaw(pack(), name, joined(before, {f}))),
                      message == nullptr ? "no error" : message + place);
        };
        expect("evaltbl", {Value::table({signal(4)})}, eval);
        expect("evalbs", {signal(4), basisOfLevel(1, 0)}, eval);
        expect("applytbl", {Value::table({signal(4)})}, apply);
        expect("applybs", {signal(4), basisOfLevel(1, 0)}, apply);
    }
}

// Nothing of a first good answer is left when a later one fails.
TEST_F(PacketFunctions, EndAtTheFirstFailure) {
    const Value basis = basisOfLevel(1, 2);
    for (const auto& [name, before] : {std::pair("evaltbl", Arguments{tableOf(8, 1, 2)}),
                                       {"applytbl", {tableOf(8, 1, 2)}},
                                       {"evalbs", {signal(8), basis}},
                                       {"applybs", {signal(8), basis}}}) {
        for (int k = 1; k <= 4; ++k) {
            int calls = 0;
            const Value failing = functionOf(
                [&, k](const Value& packet) { return ++calls == k ? Value::error("mine", 3) : packet; });
            EXPECT_EQ(complaintOf(host.callRaw(pack(), name, joined(before, {failing}))), "mine (3)");
            EXPECT_EQ(calls, k);
            host.interruptEvaluationAt(k);
            const Value stopped = host.callRaw(pack(), name, joined(before, {unchanged()}));
            EXPECT_EQ(complaintOf(stopped), "interrupted (0)");
            EXPECT_EQ(host.calls(Service::applyList), k);
        }
    }
}

TEST_F(PacketFunctions, MayCallTheLibrary) {
    const Value table = tableOf(8, 8, 2);
    const Value busy = functionOf([&](const Value& packet) {
        call("wpt", signal(16), 2, column({0.5, 0.5 + packet.reals()[0], 0.1}));
        call("applybs", packet, basisOfLevel(2, 0), unchanged());
        return packet;
    });
    EXPECT_TRUE(same(call("applytbl", table, busy), table));
    EXPECT_TRUE(same(call("evaltbl", table, busy), call("evaltbl", table, unchanged())));
}

// --- basis_display2d ---

// A frame, and of every block the left and the lower side.
Grid pictureOf(const Tiling& tiling) {
    Grid picture = {128, 128, Numbers(128 * 128, 255.0)};
    for (const auto& [level, blockRow, blockCol] : tiling) {
        const int side = 128 >> level;
        for (int i = 0; i < side; ++i) {
            picture.at(blockRow * side + i, blockCol * side) = 0.0;
            picture.at((blockRow + 1) * side - 1, blockCol * side + i) = 0.0;
        }
    }
    for (int i = 0; i < 128; ++i) picture.at(0, i) = picture.at(i, 127) = 0.0;
    return picture;
}

TEST_F(PacketFunctions, PicturesShowTheBlocks) {
    std::vector<Tiling> tilings = allTilings(2, 2);
    tilings.push_back(randomTiling(2, 7, 1));
    tilings.back().push_back(tilings.back().front());
    for (const Tiling& tiling : tilings)
        EXPECT_TRUE(same(call("basis_display2d", basisOf(2, tiling)), pictureOf(tiling).value()));
}

// --- errors ---

constexpr const char* noTable = "invalid packet table";
constexpr const char* noArray = "must be array";
constexpr const char* notVector = "must be real vector";
constexpr const char* tooMany = "too many levels to be displayed";

// A table of two levels with a number where one of them should be.
Value withNumber(int level) {
    Value table = column({5, 5});
    table.nest(1 - level, 0, signal(8));
    return table;
}

// As a user might damage a table of a signal of 8 samples and two levels, or of an 8 x 4 image.
void addTables(const WrongCalls& wrong) {
    const Value eight = signal(8);
    Value strange = Value::column(Numbers{0, 0}, Numbers{0, 1});
    strange.nest(0, 0, eight);
    wrong.give(notVector, 1, {{unrealColumn()}, {strange}});
    wrong.give(noTable, 1, {{column({})}, {eight}, {withNumber(0)}, {withNumber(1)}});
    // The last has a scalar value where numbers might stand.
    for (const Arguments& cells : {Arguments{"text", eight, eight, eight, eight},
                                   {eight, eight, "text"},
                                   {eight, "text", signal(7)},
                                   {eight, 5, eight}})
        wrong.give(noArray, 1, {{Value::table(cells)}});
    for (const Arguments& cells : {Arguments{eight, signal(7), "text"},
                                   {eight, row(noise(8))},
                                   {image(8, 4), image(4, 8)},
                                   {image(8, 4), eight},
                                   {Value::table({eight, eight})},
                                   {eight, "text", eight, eight, eight}})
        wrong.give(noTable, 1, {{Value::table(cells)}});
    for (const auto& [count, cell] : {std::pair(5u, eight),
                                      {33u, eight},
                                      {5000u, eight},
                                      {3u, image(8, 2)},
                                      {4u, image(3, 8)},
                                      {2u, row(noise(8))},
                                      {2u, column({})}})
        wrong.give(noTable, 1, {{Value::table(Arguments(count, cell))}});
}

// Bases of no data, or too deep for what is given with them.
void addBases(const WrongCalls& wrong, const Value& data, int dimensions) {
    const auto give = [&](const char* message, const std::vector<Numbers>& rows) {
        wrong.give(message, 2, {{data, basisRows(dimensions, rows)}});
    };
    give(notWhole, {{20, 0.5}});
    give(noBasis, {{20, 0}});
    give(noBasis, {{1, 0}, {1, 2}});
}

void addPictures(const WrongCalls& picture) {
    picture.give(notArray, 1, {{unrealRows()}});
    for (const Value& basis : {column({NaN}), basisRows({{9, NaN}}), Value::matrix(1, 4, Numbers(4))})
        picture.give(notTwoDimensional, 1, {{basis}});
    for (const double level : {8.0, 8.5, 1e300, inf, twoTo32})
        picture.give(tooMany, 1, {{basisRows({{NaN, 0, 0}, {level, NaN, -1}})}});
    for (const Numbers& packet : {Numbers{7.5, 0, 0}, {NaN, 0, 0}, {7, NaN, 128}})
        picture.give(notWhole, 1, {{basisRows({packet})}});
    for (const Numbers& packet : {Numbers{7, 128, NaN}, {7, 127, 127}, {-1, 0, 0}})
        picture.give(noBasis, 1, {{basisRows({packet})}});
}

void addExtractions(const WrongCalls& wrong) {
    const Value damaged = withNumber(1);
    wrong.give(notVector, 1, {{unrealColumn(), unrealRows()}});
    wrong.give(notArray, 2, {{damaged, unrealRows()}, {damaged, nestedColumn()}});
    for (const Value& basis : {column({NaN}), Value::matrix(1, 4, Numbers(4, NaN)), image(2, 0)})
        wrong.give(noBasis, 2, {{damaged, basis}});
    for (const int dimensions : {1, 2}) {
        // The basis before the table, but the table before the depth.
        addBases(wrong, damaged, dimensions);
        wrong.give(noTable, 1, {{damaged, basisOfLevel(dimensions, 4)}});
        wrong.give(tooDeep, 2, {{tableOf(8, 1, 1), basisOfLevel(dimensions, 2)}});
    }
    // The other dimension, after the depth.
    wrong.give(notOneDimensional, 2, {{tableOf(8, 1, 3), basisOfLevel(2, 1)}});
    wrong.give(notTwoDimensional, 2, {{tableOf(8, 4, 2), basisOfLevel(1, 1)}});
}

std::vector<ErrorCase> functionErrors() {
    std::vector<ErrorCase> table;
    const Value f = always("never called with success");
    for (const char* name : {"best_basis", "evaltbl", "applytbl"}) addTables({table, name, {f}});
    addTables({table, "extract_basis", {basisOfLevel(1, 0)}});
    addExtractions({table, "extract_basis"});
    addPictures({table, "basis_display2d"});
    for (const char* name : {"evalbs", "applybs"}) {
        const WrongCalls wrong(table, name, {f});
        wrong.give(notArray, 1, {{unrealColumn(), unrealRows()}});
        wrong.give(notArray, 2, {{signal(8), unrealRows()}, {signal(8), nestedColumn()}});
        wrong.give(notOneDimensional, 2, {{signal(8), basisRows({{NaN, 0, 0}})}});
        wrong.give(notTwoDimensional, 2, {{row({1, 2}), basisRows({{NaN, 0}})}});
        addBases(wrong, signal(15), 1);
        addBases(wrong, image(8, 3), 2);
        wrong.give(tooDeep, 2, {{signal(15), basisOfLevel(1, 4)}, {column({}), basisOfLevel(1, 1)}});
        wrong.give(tooDeep, 2, {{image(8, 3), basisOfLevel(2, 2)}, {image(3, 8), basisOfLevel(2, 2)}});
    }
    return cases(table);
}

INSTANTIATE_TEST_SUITE_P(PacketFunctions, Errors, testing::ValuesIn(functionErrors()), nameOfError);

// --- troubles ---

TEST(PacketFunctionRobustness, PollsAsOftenAsSaidAndSurvivesEveryTrouble) {
    const Value rows = basisRows({{1, 1}, {2, 0}, {2, 1}});
    const Value blocks = basisOfLevel(2, 1);
    for (const Value& f : {unchanged(), sum()}) {
        expectRobust("evaltbl", {tableOf(5, 1, 2), f});
        expectRobust("evalbs", {image(4, 5), blocks, f});
    }
    expectRobust("applytbl", {tableOf(4, 5, 1), unchanged()});
    expectRobust("applybs", {signal(5), rows, unchanged()});
    expectRobust("extract_basis", {tableOf(5, 1, 2), rows}, 3);
    expectRobust("basis_display2d", {blocks}, 4);
}

}  // namespace
