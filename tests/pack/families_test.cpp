// The orthonormal splines, which do not reconstruct quite, and the ordinary wavelet basis.
#include "support/packets.h"

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
