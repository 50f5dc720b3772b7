// best_basis: against a search through every admissible basis, with ties; the order in which packets
// are visited; costs that are no numbers, and cost functions that misbehave.
#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

#include "support/failing_new.h"
#include "support/packets.h"
#include "support/robustness.h"

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double inf = std::numeric_limits<double>::infinity();

using efihost::Callback;
using efihost::RealCallback;

Value costOf(RealCallback function) {
    return Value::function(std::move(function));
}

struct Levels {
    std::vector<Grid> grids;

    int rows() const { return grids.front().rows; }
    int cols() const { return grids.front().cols; }
    int dimensions() const { return grids.front().dimensions(); }
    int deepest() const { return static_cast<int>(grids.size()) - 1; }
    Grid packet(const TestPacket& packet) const {
        return grids[static_cast<std::size_t>(packet.level)].part(placeOf(rows(), cols(), packet));
    }
    Value value() const {
        std::vector<Value> cells;
        for (const Grid& grid : grids) cells.push_back(grid.value());
        return Value::table(cells);
    }
};

// Small whole numbers, so that sums are exact and ties are frequent.
Levels wholeNumbers(int rows, int cols, int deepest, unsigned seed) {
    std::mt19937 random(seed);
    Levels levels;
    for (int j = 0; j <= deepest; ++j) {
        Grid grid = {rows, cols, {}};
        for (int i = 0; i < rows * cols; ++i) grid.values.push_back(double(random() % 5) - 2.0);
        levels.grids.push_back(std::move(grid));
    }
    return levels;
}

double costOfTiling(const Levels& levels, const Tiling& tiling, const RealCallback& cost) {
    double sum = 0.0;
    for (const TestPacket& packet : tiling) {
        for (const double x : levels.packet(packet).values) sum += cost(x);
    }
    return sum;
}

// Row and column position with their bits in turn, the row's first.
int treeOrder(const TestPacket& packet) {
    int order = 0;
    for (int bit = 0; bit < 15; ++bit) {
        order |= (packet.row >> bit & 1) << (2 * bit + 1) | (packet.col >> bit & 1) << (2 * bit);
    }
    return order;
}

Tiling inOrder(Tiling tiling) {
    std::ranges::sort(tiling, {},
                      [](const TestPacket& packet) { return std::pair(packet.level, treeOrder(packet)); });
    return tiling;
}

// Of all tilings of least cost the one with the most packets: children are taken on a tie.
Tiling searchAll(const Levels& levels, const std::vector<Tiling>& tilings, const RealCallback& cost) {
    const Tiling* best = nullptr;
    double least = inf;
    for (const Tiling& tiling : tilings) {
        const double sum = costOfTiling(levels, tiling, cost);
        if (best == nullptr || sum < least || (sum == least && tiling.size() > best->size())) {
            best = &tiling;
            least = sum;
        }
    }
    return inOrder(*best);
}

class BestBasis : public PackTest {
 protected:
    void expectBest(const Levels& levels, const std::vector<Tiling>& tilings) {
        const RealCallback costs[] = {
            [](double x) { return std::fabs(x); },
            [](double x) { return x * x; },
            [](double x) { return x; },
            [](double x) { return double(x != 0.0); },
            [](double x) { return x > 0.0 ? 2.0 : -1.0; },
        };
        const Value table = levels.value();
        for (const RealCallback& cost : costs) {
            const Value best = call("best_basis", table, costOf(cost));
            EXPECT_TRUE(same(best, basisOf(levels.dimensions(), searchAll(levels, tilings, cost))));
        }
    }
    Value chosen(const std::vector<Numbers>& levels, const Value& cost) {
        std::vector<Value> cells;
        for (const Numbers& each : levels) cells.push_back(column(each));
        return call("best_basis", Value::table(cells), cost);
    }
};

TEST_F(BestBasis, IsBestOfAllBases) {
    const std::vector<Tiling> ofSignals = allTilings(1, 4);
    const std::vector<Tiling> ofImages = allTilings(2, 2);
    for (unsigned seed = 1; seed <= 12; ++seed) {
        for (const int rows : {16, 21, 31, 64}) expectBest(wholeNumbers(rows, 1, 4, seed), ofSignals);
        for (const auto& [rows, cols] :
             {std::pair(4, 4), std::pair(5, 7), std::pair(6, 13), std::pair(16, 8)})
            expectBest(wholeNumbers(rows, cols, 2, seed), ofImages);
    }
}

// Of packets with costs of any size the sums are rounded, so that only their total is compared.
TEST_F(BestBasis, OfATransformCostsLeast) {
    const RealCallback entropy = [](double x) { return x == 0.0 ? 0.0 : -x * x * std::log(x * x); };
    const Value filter =
        column({0.48296291314453416, 0.83651630373780794, 0.22414386804201339, -0.12940952255126037});
    for (unsigned seed = 1; seed <= 5; ++seed) {
        for (const Grid& data : {noisyGrid(64, 1, seed), noisyGrid(16, 24, seed)}) {
            const int deepest = data.dimensions() == 1 ? 4 : 2;
            const Value table = call("wpt", data.value(), deepest, filter);
            Levels levels;
            for (int j = 0; j <= deepest; ++j) levels.grids.push_back(Grid::of(table.nested(j, 0)));
            const Grid rows = Grid::of(call("best_basis", table, costOf(entropy)));
            Tiling tiling;
            for (int r = 0; r < rows.rows; ++r) {
                tiling.push_back(
                    {int(rows.at(r, 0)), int(rows.at(r, 1)), rows.cols == 3 ? int(rows.at(r, 2)) : 0});
            }
            const std::vector<Tiling> all = allTilings(data.dimensions(), deepest);
            const double least = costOfTiling(levels, searchAll(levels, all, entropy), entropy);
            EXPECT_NEAR(costOfTiling(levels, tiling, entropy), least, 1e-12 * std::fabs(least));
            EXPECT_EQ(complaint("wpt", data.value(), rows.value(), filter), "no error");
        }
    }
}

TEST_F(BestBasis, TakesTheChildrenOnATie) {
    const Value one = costOf([](double) { return 1.0; });
    EXPECT_TRUE(
        same(call("best_basis", wholeNumbers(32, 1, 5, 1).value(), one), basisOf(1, wholeLevel(1, 5))));
    EXPECT_TRUE(same(call("best_basis", wholeNumbers(9, 8, 3, 1).value(), one),
                     basisOf(2, inOrder(wholeLevel(2, 3)))));
    EXPECT_TRUE(same(call("best_basis", wholeNumbers(5, 1, 0, 1).value(), one), basisRows({{0, 0}})));
    EXPECT_TRUE(same(call("best_basis", wholeNumbers(1, 6, 0, 1).value(), one), basisRows({{0, 0, 0}})));
    for (const Value& empty : {column({}), Value::matrix(0, 3, Numbers{}), Value::matrix(2, 0, Numbers{})}) {
        const Value basis = call("best_basis", Value::table({empty}), one);
        EXPECT_EQ(basis.reals(), Numbers(empty.cols() < 2 ? 2 : 3));
    }
}

// Each packet once, from the deepest level up; of an image the deepest level by rows of packets, the
// others in the order of the tree; within a packet row by row. The polls are counted as they fall.
TEST_F(BestBasis, VisitsPacketsInOrder) {
    for (const auto& [rows, cols, deepest] :
         {std::tuple(13, 1, 3), std::tuple(6, 9, 2), std::tuple(8, 8, 3), std::tuple(3, 2, 0)}) {
        Levels levels;
        for (int j = 0; j <= deepest; ++j)
            levels.grids.push_back(noisyGrid(rows, cols, static_cast<unsigned>(j + 1)));
        const int dimensions = levels.dimensions();
        Numbers expected;
        std::vector<int> expectedPolls;
        int polls = 0;
        for (int j = deepest; j >= 0; --j) {
            Tiling packets = wholeLevel(dimensions, j);
            if (j < deepest) packets = inOrder(packets);
            for (const TestPacket& packet : packets) {
                const bool firstOfLevel = packet.row == 0 && packet.col == 0;
                const bool firstOfRow = j == deepest && packet.col == 0;
                polls += dimensions == 1 || firstOfRow || firstOfLevel;
                const Grid part = levels.packet(packet);
                for (int r = 0; r < part.rows; ++r) {
                    for (int c = 0; c < part.cols; ++c) {
                        expected.push_back(part.at(r, c));
                        expectedPolls.push_back(polls);
                    }
                }
            }
        }
        Numbers visited;
        std::vector<int> polled;
        host.clear();
        call("best_basis", levels.value(), costOf([&](double x) {
                 visited.push_back(x);
                 polled.push_back(host.polls());
                 return 0.0;
             }));
        EXPECT_EQ(visited, expected);
        EXPECT_EQ(polled, expectedPolls);
        EXPECT_EQ(host.polls(), dimensions == 1 ? (2 << deepest) - 1 : (1 << deepest) + deepest);
        EXPECT_EQ(host.calls(Service::applyOne), (deepest + 1) * rows * cols);
    }
}

TEST_F(BestBasis, LetsNoParentWinByACostThatIsNoNumber) {
    const Value itself = costOf([](double x) { return x; });
    const Value root = basisRows({{0, 0}});
    const Value halves = basisRows({{1, 0}, {1, 1}});
    EXPECT_TRUE(same(chosen({{1, 1}, {2, 2}}, itself), root));
    EXPECT_TRUE(same(chosen({{nan, 1}, {2, 2}}, itself), halves));
    EXPECT_TRUE(same(chosen({{1, 1}, {2, nan}}, itself), halves));
    EXPECT_TRUE(same(chosen({{1, 1}, {2, inf}}, itself), root));
    EXPECT_TRUE(same(chosen({{inf, 1}, {2, inf}}, itself), halves));
    EXPECT_TRUE(same(chosen({{inf, 1}, {2, 2}}, itself), halves));
    EXPECT_TRUE(same(chosen({{-inf, 1}, {2, 2}}, itself), root));
    EXPECT_TRUE(same(chosen({{1, 1}, {2, -inf}}, itself), halves));
    // The sum of the children's costs is no number, all the way up.
    EXPECT_TRUE(same(chosen({{1, 1, 1, 1}, {5, 5, 0, 0}, {nan, 9, 9, 9}}, itself),
                     basisRows({{1, 1}, {2, 0}, {2, 1}})));
    EXPECT_TRUE(same(chosen({{1, 1, 1, 1}, {2, 2, 2, 2}, {9, 9, 9, 9}}, costOf([](double) { return nan; })),
                     basisOf(1, wholeLevel(1, 2))));
}

// What is no scalar counts as 0, of a complex number the real part counts.
TEST_F(BestBasis, CountsWhatIsNoNumberAsZero) {
    const std::vector<Numbers> levels = {{1, 1}, {2, -3}};  // the children cost less in truth, not here
    const auto answersTo = [](const Value& strange) {
        return Value::function(Callback([=](const auto& arguments) -> Value {
            return arguments[0].real() == -3.0 ? strange : arguments[0];
        }));
    };
    const Value root = basisRows({{0, 0}});
    const Value halves = basisRows({{1, 0}, {1, 1}});
    EXPECT_TRUE(same(chosen(levels, costOf([](double x) { return x; })), halves));
    const std::vector<Value> strange = {"text",  column({-9}),     Value::error("mine", 2),
                                        Value(), Value::ofTag(16), costOf([](double x) { return x; })};
    for (const Value& each : strange) {
        EXPECT_TRUE(same(chosen({{1.5, 1.5}, {4, -3}}, answersTo(each)), root));
        EXPECT_TRUE(same(chosen({{1, 1}, {2, -3}}, answersTo(each)), halves));
    }
    EXPECT_TRUE(same(chosen(levels, answersTo(std::complex(-3.0, 100.0))), halves));
    EXPECT_TRUE(same(chosen(levels, answersTo(std::complex(1.0, -100.0))), root));
    EXPECT_TRUE(same(chosen(levels, Value::function(Callback([](const auto&) -> Value { return "always"; }))),
                     halves));
    EXPECT_TRUE(same(
        chosen(levels, Value::function(RealCallback([](double x) { return x; }), TagFunctionAlt)), halves));
}

TEST_F(BestBasis, CallsNoMoreOnceTheFunctionIsInterrupted) {
    const Levels levels = wholeNumbers(8, 1, 3, 5);
    for (int k = 1; k <= 4 * 8; ++k) {
        int calls = 0;
        const RealCallback untilThen = [&](double x) { return ++calls < k ? x + 3.0 : 0.0; };
        const Value expected = call("best_basis", levels.value(), costOf(untilThen));
        host.interruptEvaluationAt(k);
        const Value best = call("best_basis", levels.value(), costOf([](double x) { return x + 3.0; }));
        EXPECT_TRUE(same(best, expected)) << k;
        EXPECT_EQ(host.calls(Service::applyOne), k);
    }
}

TEST_F(BestBasis, LetsTheFunctionRaiseAndCallTheLibrary) {
    struct Raised {};
    const Levels levels = wholeNumbers(16, 1, 3, 7);
    int calls = 0;
    const Value raising = costOf([&](double x) {
        if (++calls == 20) throw Raised();
        return x;
    });
    EXPECT_THROW(call("best_basis", levels.value(), raising), Raised);
    EXPECT_EQ(calls, 20);
    EXPECT_EQ(host.liveRoots(), 0);

    const Value calling = costOf([&](double x) {
        const Value inner = wholeNumbers(8, 8, 2, 3).value();
        call("best_basis", inner, costOf([](double y) { return y; }));
        return call("dwt", column({x, x}), 1, column({0.5, 0.5})).reals()[0];
    });
    EXPECT_TRUE(same(call("best_basis", levels.value(), calling),
                     call("best_basis", levels.value(), costOf([](double x) { return x; }))));
}

// Elements whose columns lie apart, with imaginary parts that do not count.
TEST_F(BestBasis, ReadsElementsWhereverTheyLie) {
    const Levels levels = wholeNumbers(8, 12, 2, 3);
    std::vector<Value> cells;
    for (const Grid& grid : levels.grids) cells.push_back(strided(8, 12, grid.values));
    cells[1] = Value::matrix(8, 12, levels.grids[1].values, Numbers(96, 5.0));
    const Value cost = costOf([](double x) { return std::fabs(x); });
    EXPECT_TRUE(
        same(call("best_basis", Value::table(cells), cost), call("best_basis", levels.value(), cost)));

    // An element without an array is zeros.
    const Value none = Value::table({column({1, 1, 1, 1}), Value::adopt(4, 1, nullptr)});
    EXPECT_TRUE(same(call("best_basis", none, cost), basisRows({{1, 0}, {1, 1}})));
}

// A million samples, nine million evaluations: the memory is that of the tree and of the basis. The
// host is one that does not ask for memory itself at every evaluation.
TEST(BestBasisMemory, DoesNotGrowWithEvaluations) {
    efihost::Host host;
    const Value table = host.call(pack(), "wpt", column(noise(1 << 20)), 8, column({0.5, 0.5}));
    const Value cost = costOf([](double x) { return std::fabs(x); });
    const long before = allocatedBytes();
    const Value basis = host.call(pack(), "best_basis", table, cost);
    EXPECT_LT(allocatedBytes() - before, 64 * 1024);
    EXPECT_GT(basis.rows(), 0);
}

TEST(BestBasisRobustness, PollsAsOftenAsSaidAndSurvivesEveryTrouble) {
    const auto given = [](int rows, int cols, int deepest, const Value& cost) {
        const Value table = wholeNumbers(rows, cols, deepest, 9).value();
        return [=](int) { return std::vector<Value>{table, cost}; };
    };
    const Value real = costOf([](double x) { return x * x; });
    expectRobust({"best_basis", given(5, 1, 2, real), 7});
    expectRobust({"best_basis", given(4, 5, 2, real), 4 + 2});
    expectRobust({"best_basis", given(2, 2, 0, real), 1});
}

}  // namespace
