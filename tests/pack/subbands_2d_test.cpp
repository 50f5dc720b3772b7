// Blocks of transformed images: where they lie, what is put there, and every complaint.
#include <cmath>

#include "support/error_cases.h"
#include "support/robustness.h"

using namespace std::complex_literals;

namespace {

using Shape = std::pair<int, int>;

Value numbered(int rows, int cols, double first = 0.0) {
    Numbers values(static_cast<std::size_t>(rows * cols));
    for (double& value : values) value = first++;
    return Value::matrix(rows, cols, values);
}

struct Segment {
    int start;
    int length;
};

// The parts of a level lie side by side in the order of their indices. The ones of the index's Gray
// code, from the most significant on, are the halvings that keep the smaller half.
std::vector<Segment> segments(int n, int level) {
    std::vector<Segment> all;
    int start = 0;
    for (int index = 0; index < 1 << level; ++index) {
        const int gray = index ^ (index >> 1);
        int length = n;
        for (int bit = level - 1; bit >= 0; --bit)
            length = (gray >> bit & 1) != 0 ? length / 2 : (length + 1) / 2;
        all.push_back({start, length});
        start += length;
    }
    return all;
}

Numbers block(const Value& matrix, const Segment& rows, const Segment& cols) {
    Numbers values;
    for (int c = 0; c < cols.length; ++c) {
        for (int r = 0; r < rows.length; ++r) {
            values.push_back(matrix.at(rows.start + r, cols.start + c).real());
        }
    }
    return values;
}

class Blocks : public PackTest {
 protected:
    void expectGetsAndPuts(const Value& matrix, int level, int i, int j, Segment rows, Segment cols) {
        SCOPED_TRACE(testing::Message() << matrix.rows() << " x " << matrix.cols() << " block " << level
                                        << ", " << i << ", " << j);
        const Value got = call("get_subband2d", matrix, level, i, j);
        ASSERT_EQ(Shape(got.rows(), got.cols()), Shape(rows.length, cols.length));
        EXPECT_EQ(got.reals(), block(matrix, rows, cols));

        const Value part = numbered(rows.length, cols.length, -1000.0);
        const Value after = call("put_subband2d", matrix, level, i, j, part);
        EXPECT_EQ(block(after, rows, cols), part.reals());
        EXPECT_TRUE(same(call("put_subband2d", after, level, i, j, got), matrix)) << "other elements differ";
    }
};

}  // namespace

TEST_F(Blocks, LieWhereTheHalvingsOfBothSidesPutThem) {
    for (const auto& [rows, cols] : {Shape(8, 4), {5, 6}, {13, 7}, {4, 16}, {1, 5}, {2, 2}, {9, 1}}) {
        const Value matrix = numbered(rows, cols);
        for (int level = 0; 1 << level <= std::min(rows, cols); ++level) {
            const auto down = segments(rows, level);
            const auto across = segments(cols, level);
            for (int i = 0; i < 1 << level; ++i) {
                for (int j = 0; j < 1 << level; ++j) {
                    expectGetsAndPuts(matrix, level, i, j, down[static_cast<std::size_t>(i)],
                                      across[static_cast<std::size_t>(j)]);
                }
            }
        }
    }
}

TEST_F(Blocks, HaveLettersForTheDetails) {
    const Value matrix = numbered(10, 7);
    const std::pair<const char*, Shape> letters[] = {{"H", {1, 0}}, {"V", {0, 1}}, {"D", {1, 1}}};
    for (int level = 1; level <= 2; ++level) {
        for (const auto& [letter, index] : letters) {
            const auto [i, j] = index;
            const Value expected = call("get_subband2d", matrix, level, i, j);
            EXPECT_TRUE(same(call("get_detail2d", matrix, level, letter), expected)) << letter;
            const Value part = numbered(expected.rows(), expected.cols(), -1000.0);
            EXPECT_TRUE(same(call("put_detail2d", matrix, level, part, letter),
                             call("put_subband2d", matrix, level, i, j, part)))
                << letter;
        }
    }
    for (int level = 0; level <= 2; ++level) {
        const Value expected = call("get_subband2d", matrix, level, 0, 0);
        EXPECT_TRUE(same(call("get_smooth2d", matrix, level), expected));
        const Value part = numbered(expected.rows(), expected.cols(), -1000.0);
        EXPECT_TRUE(same(call("put_smooth2d", matrix, level, part),
                         call("put_subband2d", matrix, level, 0, 0, part)));
    }
}

// The directions that the letters name: rows that differ show in H, columns that differ in V.
TEST_F(Blocks, OfATransformShowItsDirections) {
    const double half = std::sqrt(0.5);
    const Value haar = column({half, half});
    const auto energy = [&](const Numbers& values, const char* letter) {
        double sum = 0.0;
        const Value transform = call("dwts", Value::matrix(4, 4, values), 1, haar);
        for (const double detail : numbers("get_detail2d", transform, 1, letter)) sum += detail * detail;
        return sum;
    };
    Numbers rowsDiffer;
    Numbers columnsDiffer;
    for (int k = 0; k < 16; ++k) {
        rowsDiffer.push_back(k % 2);
        columnsDiffer.push_back(k / 4 % 2);
    }
    EXPECT_NEAR(energy(rowsDiffer, "H"), 4.0, 1e-12);
    EXPECT_NEAR(energy(rowsDiffer, "V") + energy(rowsDiffer, "D"), 0.0, 1e-12);
    EXPECT_NEAR(energy(columnsDiffer, "V"), 4.0, 1e-12);
    EXPECT_NEAR(energy(columnsDiffer, "H") + energy(columnsDiffer, "D"), 0.0, 1e-12);
}

TEST_F(Blocks, AreReadFromColumnsThatLieApart) {
    const Numbers values = noise(6 * 5);
    const Value apart = strided(6, 5, values);
    const Value dense = Value::matrix(6, 5, values);
    const Value part = strided(3, 2, noise(6));
    EXPECT_TRUE(same(call("get_subband2d", apart, 1, 1, 1), call("get_subband2d", dense, 1, 1, 1)));
    EXPECT_TRUE(same(call("put_subband2d", apart, 1, 1, 1, part),
                     call("put_subband2d", dense, 1, 1, 1, Value::matrix(3, 2, noise(6)))));
}

TEST(BlockRobustness, SurvivesEveryTrouble) {
    const auto given = [](std::vector<Value> arguments) { return [=](int) { return arguments; }; };
    const Value matrix = numbered(6, 4);
    const Value part = numbered(3, 2);
    expectRobust({.function = "get_subband2d", .arguments = given({matrix, 1, 1, 0})});
    expectRobust({.function = "get_smooth2d", .arguments = given({matrix, 0})});
    expectRobust({.function = "get_detail2d", .arguments = given({matrix, 1, "D"})});
    expectRobust({.function = "put_subband2d", .arguments = given({matrix, 1, 1, 0, part})});
    expectRobust({.function = "put_smooth2d", .arguments = given({matrix, 1, part})});
    expectRobust({.function = "put_detail2d", .arguments = given({matrix, 1, part, "V"})});
}

namespace {

const Value six = numbered(6, 6);
const Value complexBlock = Value::matrix(1, 2, Numbers{1, 2}, Numbers{0, 1});
const Value fitting = numbered(3, 3);

// The complaints about block (level, i, j), in the order of the checks; `last` is what else the
// function takes.
std::vector<ErrorCase> aboutBlocks(const std::string& function, const std::vector<Value>& last) {
    std::vector<ErrorCase> table = {
        {"", {1, 1, 0, 0}, "must be array", 1},
        {"", {six, "1", 0, 0}, "non-scalar value", 2},
        {"", {six, 1, six, 0}, "non-scalar value", 3},
        {"", {six, 1, 0, six}, "non-scalar value", 4},
        {"", {complexBlock, 1i, 1i, 1i}, "must be real array", 1},
        {"", {six, -0.5 + 1i, 1i, 1i}, "must be real", 2},
        {"", {six, -0.5, 0.5 + 1i, 1i}, "must be real", 3},
        {"", {six, -0.5, 0.5, 0.5 + 1i}, "must be real", 4},
        {"", {six, -0.5, 0.5, 0.5}, "must be integer", 2},
        {"", {six, -1, 0.5, 0.5}, "invalid level", 2},
        {"", {six, 4294967296.0, 0.5, 0.5}, "invalid level", 2},
        {"", {six, HUGE_VAL, 0.5, 0.5}, "invalid level", 2},
        {"", {six, 3, -0.5, 0.5}, "must be integer", 3},
        {"", {six, 3, -1, 0.5}, "must be integer", 4},
        {"", {six, 3, std::nan(""), -1}, "must be integer", 3},
        {"", {six, 3, -1, -1}, "invalid level", 2},
        {"", {six, 4294967295.0, -1, -1}, "invalid level", 2},
        {"", {numbered(8, 4), 3, 0, 0}, "invalid level", 2},
        {"", {numbered(4, 8), 3, 0, 0}, "invalid level", 2},
        {"", {numbered(8, 1), 1, 0, 0}, "invalid level", 2},
        {"", {six, 1, -1, 2}, "invalid packet index", 3},
        {"", {six, 1, 4294967296.0, -1}, "invalid packet index", 3},
        {"", {six, 1, HUGE_VAL, 0}, "invalid packet index", 3},
        {"", {six, 1, 2, 2}, "invalid packet index", 3},
        {"", {six, 0, 1, 0}, "invalid packet index", 3},
        {"", {six, 1, 1, -1}, "invalid packet index", 4},
        {"", {six, 1, 1, 4294967296.0}, "invalid packet index", 4},
        {"", {six, 2, 3, 4}, "invalid packet index", 4},
    };
    for (ErrorCase& error : table) {
        error.function = function;
        error.arguments.insert(error.arguments.end(), last.begin(), last.end());
    }
    return cases(table);
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(GottenBlocks, Errors, testing::ValuesIn(aboutBlocks("get_subband2d", {})),
                         nameOfError);
INSTANTIATE_TEST_SUITE_P(PutBlocks, Errors, testing::ValuesIn(aboutBlocks("put_subband2d", {fitting})),
                         nameOfError);

// Where two arguments are wrong, the message shows which is looked at first.
INSTANTIATE_TEST_SUITE_P(
    NamedBlocks, Errors,
    testing::ValuesIn(cases({
        {"put_subband2d", {six, 1, 0, 0, 1}, "must be array", 5},
        {"put_subband2d", {six, 0.5, 0, 0.5 + 1i, complexBlock}, "must be real", 4},
        {"put_subband2d", {six, 0.5, 0, 0, complexBlock}, "must be real array", 5},
        {"put_subband2d", {six, 1, 0, 2, numbered(1, 1)}, "invalid packet index", 4},
        {"put_subband2d", {six, 1, 0, 0, numbered(3, 2)}, "invalid subband dimensions", 5},
        {"put_subband2d", {six, 1, 0, 0, numbered(9, 1)}, "invalid subband dimensions", 5},
        {"get_smooth2d", {1, 1}, "must be array", 1},
        {"get_smooth2d", {six, "1"}, "non-scalar value", 2},
        {"get_smooth2d", {complexBlock, 1i}, "must be real array", 1},
        {"get_smooth2d", {six, 0.5 + 1i}, "must be real", 2},
        {"get_smooth2d", {six, 0.5}, "must be integer", 2},
        {"get_smooth2d", {six, 3}, "invalid level", 2},
        {"get_detail2d", {six, 1, 1}, "must be string", 3},
        {"get_detail2d", {complexBlock, 1i, "h"}, "must be real array", 1},
        {"get_detail2d", {six, 0.5 + 1i, "h"}, "must be real", 2},
        {"get_detail2d", {six, 0.5, "h"}, "invalid 2d wavelet string", 3},
        {"get_detail2d", {six, 0.5, "HV"}, "invalid 2d wavelet string", 3},
        {"get_detail2d", {six, 0.5, ""}, "invalid 2d wavelet string", 3},
        {"get_detail2d", {six, 0.5, "S"}, "invalid 2d wavelet string", 3},
        {"get_detail2d", {six, 0.5, "H"}, "must be integer", 2},
        {"get_detail2d", {six, 3, "H"}, "invalid level", 2},
        {"get_detail2d", {six, 0, "H"}, "invalid packet index", 0},
        {"get_detail2d", {six, 0, "V"}, "invalid packet index", 0},
        {"get_detail2d", {six, 0, "D"}, "invalid packet index", 0},
        {"put_smooth2d", {six, 1, 1}, "must be array", 3},
        {"put_smooth2d", {complexBlock, 1i, complexBlock}, "must be real array", 1},
        {"put_smooth2d", {six, 0.5 + 1i, complexBlock}, "must be real", 2},
        {"put_smooth2d", {six, 0.5, complexBlock}, "must be real array", 3},
        {"put_smooth2d", {six, 0.5, six}, "must be integer", 2},
        {"put_smooth2d", {six, 3, six}, "invalid level", 2},
        {"put_smooth2d", {six, 1, six}, "invalid subband dimensions", 3},
        {"put_detail2d", {six, 1, 1, "H"}, "must be array", 3},
        {"put_detail2d", {six, 1, fitting, 1}, "must be string", 4},
        {"put_detail2d", {complexBlock, 1i, complexBlock, "HV"}, "must be real array", 1},
        {"put_detail2d", {six, 0.5 + 1i, complexBlock, "HV"}, "must be real", 2},
        {"put_detail2d", {six, 0.5, complexBlock, "HV"}, "invalid 2d wavelet string", 4},
        {"put_detail2d", {six, 0.5, complexBlock, "h"}, "must be real array", 3},
        {"put_detail2d", {six, 0.5, six, "h"}, "invalid 2d wavelet string", 4},
        {"put_detail2d", {six, 0.5, six, "H"}, "must be integer", 2},
        {"put_detail2d", {six, 0, six, "D"}, "invalid packet index", 0},
        {"put_detail2d", {six, 1, six, "D"}, "invalid subband dimensions", 3},
    })),
    nameOfError);
