// The orthonormal splines, which do not reconstruct quite, and the ordinary wavelet basis.
#include "support/packets.h"
#include "support/robustness.h"
#include "support/wrong_calls.h"

namespace {

class Splines : public PackTest {};
class WaveletBasis : public PackTest {};

}  // namespace

// What is cut off costs, by degree; docs/filters.md has the same figures.
TEST_F(Splines, OrthonormalOnesReconstructToTheStatedFigure) {
    constexpr double figures[] = {4e-15, 1.3e-6, 1.2e-4, 1.3e-3, 4e-3, 1.1e-2, 1.8e-2};
    for (int degree = 0; degree <= 6; ++degree) {
        const Value filter = call("bl", degree);
        for (int n = 2; n <= 70; ++n) {
            for (int level = 0; 1 << level <= n; ++level) {
                const Numbers x = noise(static_cast<std::size_t>(n), static_cast<unsigned>(n));
                const Value back = call("idwts", call("dwts", column(x), level, filter), level, filter);
                expectNear(back.reals(), x, level * figures[degree]);
                if (HasFailure()) FAIL() << "degree " << degree << " length " << n << " level " << level;
            }
        }
    }
}

TEST_F(WaveletBasis, ListsSmoothPacketAndDetailsFromTheCoarsest) {
    const auto expectRows = [&](int level, int dimension, const std::vector<Numbers>& rows) {
        EXPECT_TRUE(same(call("wavebs", level, dimension), basisRows(rows))) << level << ", " << dimension;
    };
    expectRows(0, 1, {{0, 0}});
    expectRows(0, 2, {{0, 0, 0}});
    expectRows(3, 1, {{3, 0}, {3, 1}, {2, 1}, {1, 1}});
    expectRows(2, 2, {{2, 0, 0}, {2, 0, 1}, {2, 1, 0}, {2, 1, 1}, {1, 0, 1}, {1, 1, 0}, {1, 1, 1}});
}

TEST(SplineRobustness, SurvivesEveryTrouble) {
    expectRobust("Bspline", {3, 9});
    expectRobust({"bl", [](int variant) { return std::vector<Value>{variant % 7}; }});
    expectRobust("wavebs", {5, 1}, 5);
    expectRobust("wavebs", {5, 2}, 5);
}

namespace {

// Where two arguments are wrong, the message shows which is looked at first.
std::vector<ErrorCase> splineErrors() {
    std::vector<ErrorCase> table;
    const WrongCalls pair(table, "Bspline");
    pair.give(notReal, 1, {{1.0 + unreal, 1.0 + unreal}});
    pair.give(notReal, 2, {{-1, 1.0 + unreal}});
    pair.give(notPositive, 1, {{0, 1}, {-0.5, -1}});
    pair.give(notPositive, 2, {{1.5, 0}});
    pair.give(notWhole, 1, {{1.5, 1.5}, {NaN, 1}});
    pair.give(notWhole, 2, {{4, 1.5}});
    pair.give(noFilter, 1, {{4, 11}, {inf, 1}});
    pair.give(noFilter, 2, {{1, 11}});
    pair.give(noFilter, 0, {{1, 2}, {2, 3}, {2, 10}, {3, 10}});
    const WrongCalls single(table, "bl");
    single.give(notReal, 1, {{1.5 + unreal}});
    single.give(notWhole, 1, {{-1.5}, {NaN}});
    single.give(noLevel, 1, {{-1}, {twoTo32}});
    single.give(noFilter, 1, {{twoTo32 - 1}, {7}});
    const WrongCalls basis(table, "wavebs");
    basis.give(notReal, 1, {{0.5 + unreal, 3.0 + unreal}});
    basis.give(notReal, 2, {{0.5, 3.0 + unreal}});
    basis.give("invalid dimension", 2, {{-1.5, 3}, {2, 1.5}, {2, 0}});
    basis.give(notWhole, 1, {{2.5, 1}});
    basis.give(noLevel, 1, {{-1, 1}, {twoTo32, 2}});
    basis.give("out of memory", 0, {{twoTo32 - 1, 1}, {twoTo32 - 1, 2}});
    return cases(table);
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(Splines, Errors, testing::ValuesIn(splineErrors()), nameOfError);
