// The parts of transformed signals and images, and the lists of a level's parts.
#include <algorithm>

#include "support/packets.h"

namespace {

class Subbands : public PackTest {
 protected:
    // As a part of a signal, and under its name if it has one.
    void expectPart(int n, int level, int index, const Span& part) {
        const Grid all = noisyGrid(n, 1);
        const Place place = {part, {0, 1}};
        const Value vector = strided(n, 1, all.values);
        const Numbers expected = all.part(place).values;
        EXPECT_EQ(numbers("get_subband", vector, level, index), expected);

        const Grid fresh = noisyGrid(part.length, 1, 2);
        const Value replacement = strided(part.length, 1, fresh.values);
        Grid after = all;
        after.put(place, fresh);
        EXPECT_EQ(numbers("put_subband", vector, level + 0.75, index + 0.5, replacement), after.values);
        EXPECT_EQ(vector.reals(), all.values);
        if (index > 1) return;
        EXPECT_EQ(numbers(index == 0 ? "get_smooth" : "get_detail", vector, level), expected);
        EXPECT_EQ(numbers(index == 0 ? "put_smooth" : "put_detail", vector, level, replacement),
                  after.values);
    }

    void expectBlock(const Grid& all, int level, int i, int j, const Place& place) {
        SCOPED_TRACE(testing::Message() << all.rows << " x " << all.cols << " block " << i << ", " << j);
        const Value matrix = strided(all.rows, all.cols, all.values);
        const Grid fresh = noisyGrid(place.rows.length, place.cols.length, 2);
        const Value block = strided(fresh.rows, fresh.cols, fresh.values);
        Grid after = all;
        after.put(place, fresh);
        const auto expectSame = [](const Value& actual, const Grid& expected) {
            EXPECT_EQ(actual.rows(), expected.rows);
            EXPECT_EQ(actual.reals(), expected.values);
        };
        expectSame(call("get_subband2d", matrix, level, i, j), all.part(place));
        expectSame(call("put_subband2d", matrix, level, i, j, block), after);
        if (i == 0 && j == 0) {
            expectSame(call("get_smooth2d", matrix, level), all.part(place));
            expectSame(call("put_smooth2d", matrix, level, block), after);
        } else if (i <= 1 && j <= 1) {
            const char* letter = i == 0 ? "V" : j == 0 ? "H" : "D";
            expectSame(call("get_detail2d", matrix, level, letter), all.part(place));
            expectSame(call("put_detail2d", matrix, level, block, letter), after);
        }
    }
};

}  // namespace

TEST_F(Subbands, LieSideBySide) {
    for (int n = 1; n <= 40; ++n) {
        int level = 0;
        for (; 1 << level <= n; ++level) {
            SCOPED_TRACE(std::to_string(n) + " coefficients, level " + std::to_string(level));
            for (int k = 0; k < 1 << level; ++k) expectPart(n, level, k, spanOf(n, level, k));
            EXPECT_EQ(complaint("get_subband", signal(n), level, 1 << level), "invalid packet index (3)");
        }
        EXPECT_EQ(complaint("get_subband", signal(n), level, 0), "invalid level (2)");
    }
    expectPart(12, 3, 2, {3, 1});
    expectPart(0, 0, 0, {0, 0});
}

TEST_F(Subbands, OfImagesLieWhereTheHalvingsOfBothSidesPutThem) {
    for (const auto& [rows, cols] : {std::pair(8, 4), {5, 6}, {13, 7}, {4, 16}, {1, 5}, {2, 2}, {9, 1}}) {
        const Grid all = noisyGrid(rows, cols);
        for (int level = 0; 1 << level <= std::min(rows, cols); ++level) {
            for (const auto& [l, i, j] : wholeLevel(2, level))
                expectBlock(all, level, i, j, {spanOf(rows, level, i), spanOf(cols, level, j)});
        }
    }
}

TEST_F(Subbands, AreListed) {
    const auto expectList = [this](int level, int dimension) {
        host.clear();
        const Value expected = basisOfLevel(dimension, level);
        EXPECT_TRUE(same(call("create_level", level, dimension), expected)) << level;
        EXPECT_EQ(host.polls(), expected.rows());
    };
    for (const int level : {0, 1, 2, 3, 5, 13, 20}) expectList(level, 1);
    for (const int level : {0, 1, 2, 4, 10}) expectList(level, 2);
}
