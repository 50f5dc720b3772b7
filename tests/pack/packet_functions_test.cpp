// evaltbl, evalbs, applytbl, applybs with user functions of all kinds, and basis_display2d.
#include <numeric>

#include "support/packets.h"

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

}  // namespace
