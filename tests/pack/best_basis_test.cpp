// best_basis: against a search through every admissible basis, with ties; the order in which packets
// are visited; costs that are no numbers, and cost functions that misbehave.
#include <algorithm>
#include <cmath>
#include <random>

#include "support/failing_new.h"
#include "support/packets.h"

namespace {

using efihost::RealCallback;

Value costOf(RealCallback function) {
    return Value::function(std::move(function));
}

struct Levels {
    std::vector<Grid> grids;

    int rows() const { return grids.front().rows; }
    int cols() const { return grids.front().cols; }
    int dimensions() const { return grids.front().dimensions(); }
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
int treeOrder(int row, int col) {
    return row + col == 0 ? 0 : 4 * treeOrder(row / 2, col / 2) + 2 * (row % 2) + col % 2;
}

Tiling inOrder(Tiling tiling) {
    const auto place = [](const TestPacket& p) { return std::pair(p.level, treeOrder(p.row, p.col)); };
    std::sort(tiling.begin(), tiling.end(),
              [=](const auto& a, const auto& b) { return place(a) < place(b); });
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
        const RealCallback costs[] = {[](double x) { return x * x; }, [](double x) { return x; },
                                      [](double x) { return double(x != 0.0); }};
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
        for (const auto& [rows, cols] : {std::pair(4, 4), {5, 7}, {6, 13}, {16, 8}})
            expectBest(wholeNumbers(rows, cols, 2, seed), ofImages);
    }
}

TEST_F(BestBasis, OfOneLevelIsThatLevel) {
    for (const auto& [rows, cols] : {std::pair(5, 1), {1, 3}, {0, 1}, {0, 3}}) {
        const Levels levels = wholeNumbers(rows, cols, 0, 1);
        expectBest(levels, {wholeLevel(levels.dimensions(), 0)});
    }
}

// Each packet once, from the deepest level up; of an image the deepest level by rows of packets, the
// others in the order of the tree; within a packet row by row. The polls are counted as they fall.
TEST_F(BestBasis, VisitsPacketsInOrder) {
    for (const auto& [rows, cols, deepest] : {std::tuple(13, 1, 3), {6, 9, 2}, {8, 8, 3}, {3, 2, 0}}) {
        Levels levels;
        for (int j = 0; j <= deepest; ++j)
            levels.grids.push_back(noisyGrid(rows, cols, static_cast<unsigned>(j + 1)));
        std::vector<std::pair<double, int>> expected;  // what is visited, after how many polls
        int polls = 0;
        for (int j = deepest; j >= 0; --j) {
            Tiling packets = wholeLevel(levels.dimensions(), j);
            if (j < deepest) packets = inOrder(packets);
            for (const TestPacket& packet : packets) {
                const bool firstOfLevel = packet.row == 0 && packet.col == 0;
                const bool firstOfRow = j == deepest && packet.col == 0;
                polls += cols == 1 || firstOfRow || firstOfLevel;
                const Grid part = levels.packet(packet);
                for (int r = 0; r < part.rows; ++r) {
                    for (int c = 0; c < part.cols; ++c) expected.emplace_back(part.at(r, c), polls);
                }
            }
        }
        std::vector<std::pair<double, int>> visited;
        host.clear();
        call("best_basis", levels.value(), costOf([&](double x) {
                 visited.emplace_back(x, host.polls());
                 return 0.0;
             }));
        EXPECT_EQ(visited, expected);
        EXPECT_EQ(host.polls(), cols == 1 ? (2 << deepest) - 1 : (1 << deepest) + deepest);
    }
}

// The parent's cost is the children's rounded to a double: up in the second case, down in the others.
TEST_F(BestBasis, SumsCostsToDoubles) {
    const Value itself = costOf([](double x) { return x; });
    for (const auto& levels : {std::vector<Numbers>{{0.7999999999999999, 0}, {0.7, 0.1}},
                               {{0.30000000000000004, 0}, {0.1, 0.2}},
                               {{0x1p53, 0}, {0x1p53, 1}}})
        EXPECT_TRUE(same(chosen(levels, itself), basisOfLevel(1, 1)));
}

TEST_F(BestBasis, LetsNoParentWinByACostThatIsNoNumber) {
    const Value itself = costOf([](double x) { return x; });
    for (const auto& levels : {std::vector<Numbers>{{1, 1}, {2, 2}}, {{1, 1}, {2, inf}}, {{-inf, 1}, {2, 2}}})
        EXPECT_TRUE(same(chosen(levels, itself), basisOfLevel(1, 0)));
    for (const auto& levels : {std::vector<Numbers>{{NaN, 1}, {2, 2}},
                               {{1, 1}, {2, NaN}},
                               {{inf, 1}, {2, inf}},
                               {{inf, 1}, {2, 2}},
                               {{1, 1}, {2, -inf}}})
        EXPECT_TRUE(same(chosen(levels, itself), basisOfLevel(1, 1)));
    // The sum of the children's costs is no number, all the way up.
    EXPECT_TRUE(same(chosen({{1, 1, 1, 1}, {5, 5, 0, 0}, {NaN, 9, 9, 9}}, itself),
                     basisRows({{1, 1}, {2, 0}, {2, 1}})));
    EXPECT_TRUE(same(chosen({{1, 1, 1, 1}, {2, 2, 2, 2}, {9, 9, 9, 9}}, costOf([](double) { return NaN; })),
                     basisOfLevel(1, 2)));
}

TEST_F(BestBasis, DisregardsImaginaryParts) {
    const Levels levels = wholeNumbers(8, 12, 1, 3);
    const Value unreal = Value::matrix(8, 12, levels.grids[1].values, Numbers(96, 5.0));
    const Value cost = costOf([](double x) { return std::fabs(x); });
    EXPECT_TRUE(same(call("best_basis", Value::table({levels.grids[0].value(), unreal}), cost),
                     call("best_basis", levels.value(), cost)));
}

// A million samples, nine million evaluations: the memory is that of a copy of the table, of the tree and
// of the basis. The host is one that does not ask for memory itself at every evaluation.
TEST(BestBasisMemory, DoesNotGrowWithEvaluations) {
    efihost::Host host;
    const Value table = host.call(pack(), "wpt", column(noise(1 << 20)), 8, column({0.5, 0.5}));
    const Value cost = costOf([](double x) { return std::fabs(x); });
    const long before = allocatedBytes();
    const Value basis = host.call(pack(), "best_basis", table, cost);
    EXPECT_LT(allocatedBytes() - before, 9 * (8 << 20) + 64 * 1024);
    EXPECT_GT(basis.rows(), 0);
}

}  // namespace
