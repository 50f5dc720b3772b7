// The parts of transformed signals, and the lists of a level's parts.
#include <numeric>

#include "support/pack.h"

namespace {

using Part = std::vector<int>;

// All parts of a level, by definition: each part is split into a low-pass half, which is the longer
// one, and a high-pass half; the low-pass half stands first in a part of even index.
std::vector<Part> partsOf(int n, int level) {
    Part whole(static_cast<std::size_t>(n));
    std::iota(whole.begin(), whole.end(), 0);
    std::vector<Part> parts = {whole};
    for (; level > 0; --level) {
        std::vector<Part> halves;
        for (std::size_t index = 0; index < parts.size(); ++index) {
            const Part& part = parts[index];
            const std::size_t length = index % 2 == 0 ? (part.size() + 1) / 2 : part.size() / 2;
            const auto middle = part.begin() + static_cast<std::ptrdiff_t>(length);
            halves.emplace_back(part.begin(), middle);
            halves.emplace_back(middle, part.end());
        }
        parts = halves;
    }
    return parts;
}

int deepest(int n) {
    int level = 0;
    for (; 2 << level <= n; ++level) {
    }
    return level;
}

Numbers counted(int n) {
    Numbers values(static_cast<std::size_t>(n));
    std::iota(values.begin(), values.end(), 0.0);
    return values;
}

class Subbands : public PackTest {
 protected:
    void expectPart(int n, int level, int index, const Part& part) {
        const Value vector = strided(n, 1, counted(n));
        EXPECT_EQ(numbers("get_subband", vector, level, index), Numbers(part.begin(), part.end()));

        const Numbers fresh = noise(part.size());
        Numbers expected = counted(n);
        for (std::size_t i = 0; i < part.size(); ++i) expected[static_cast<std::size_t>(part[i])] = fresh[i];
        const Value replacement = strided(static_cast<int>(part.size()), 1, fresh);
        EXPECT_EQ(numbers("put_subband", vector, level, index, replacement), expected);
        EXPECT_EQ(numbers("put_subband", vector, level + 0.75, index + 0.5, replacement), expected);
        EXPECT_EQ(vector.reals(), counted(n));
        if (index > 1) return;
        EXPECT_EQ(numbers(index == 0 ? "get_smooth" : "get_detail", vector, level),
                  Numbers(part.begin(), part.end()));
        EXPECT_EQ(numbers(index == 0 ? "put_smooth" : "put_detail", vector, level, replacement), expected);
    }
};

}  // namespace

TEST_F(Subbands, LieWhereTheSplitsPutThem) {
    for (int n = 1; n <= 40; ++n) {
        for (int level = 0; level <= deepest(n); ++level) {
            SCOPED_TRACE(std::to_string(n) + " coefficients, level " + std::to_string(level));
            const auto parts = partsOf(n, level);
            for (std::size_t k = 0; k < parts.size(); ++k)
                expectPart(n, level, static_cast<int>(k), parts[k]);
            EXPECT_EQ(complaint("get_subband", column(counted(n)), level, parts.size()),
                      "invalid packet index (3)");
        }
        EXPECT_EQ(complaint("get_subband", column(counted(n)), deepest(n) + 1, 0), "invalid level (2)");
    }
    expectPart(12, 3, 2, {3});
    expectPart(12, 3, 3, {4, 5});
    expectPart(0, 0, 0, {});
}

TEST_F(Subbands, ReadWhatATransformLeaves) {
    const Value y = call("dwt", column(noise(32)), 3, call("daublet", 4));
    const Numbers all = y.reals();
    Numbers joined = numbers("get_smooth", y, 3);
    for (const int level : {3, 2, 1}) {
        const Numbers detail = numbers("get_detail", y, level);
        joined.insert(joined.end(), detail.begin(), detail.end());
    }
    EXPECT_EQ(joined, all);
}

TEST_F(Subbands, TreatAbsentArraysAsZeros) {
    EXPECT_EQ(numbers("get_subband", Value::adopt(8, 1, nullptr), 1, 1), Numbers(4));
    EXPECT_EQ(numbers("put_smooth", Value::adopt(4, 1, nullptr), 1, column({1, 2})), (Numbers{1, 2, 0, 0}));
    EXPECT_EQ(numbers("put_smooth", column({1, 2, 3, 4}), 1, Value::adopt(2, 1, nullptr)),
              (Numbers{0, 0, 3, 4}));
    EXPECT_EQ(numbers("get_subband", column({1, 2}), -0.0, -0.0), (Numbers{1, 2}));
}

TEST_F(Subbands, AreListed) {
    const auto expectList = [this](int level, int dimension) {
        const int side = 1 << level;
        const int rows = dimension == 1 ? side : side * side;
        host.clear();
        const Value list = call("create_level", level, dimension);
        EXPECT_EQ(host.polls(), rows);
        ASSERT_EQ(list.rows(), rows);
        ASSERT_EQ(list.cols(), dimension + 1);
        for (int r = 0; r < rows; ++r) {
            const auto at = [&](int c) { return list.re(c)[static_cast<std::size_t>(r)]; };
            const bool right =
                at(0) == level && (dimension == 1 ? at(1) == r : at(1) == r / side && at(2) == r % side);
            ASSERT_TRUE(right) << "row " << r;
        }
    };
    for (int level = 0; level <= 20; level = level < 6 ? level + 1 : level + 7) expectList(level, 1);
    for (int level = 0; level <= 10; level = level < 4 ? level + 1 : level + 6) expectList(level, 2);
}
