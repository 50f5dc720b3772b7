// The parts of transformed signals and images, and the lists of a level's parts.
#include <algorithm>

#include "support/packets.h"
#include "support/wrong_calls.h"

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

namespace {

constexpr const char* notVector = "must be real vector";
constexpr const char* wrongDimensions = "invalid subband dimensions";
constexpr const char* noOrientation = "invalid 2d wavelet string";
constexpr const char* noDimension = "invalid dimension";

// Levels and indices must be whole where a part of a signal is read, and are truncated where one is
// written. Where several arguments are wrong, the message shows which is looked at first.
void addParts(std::vector<ErrorCase>& table) {
    const Value v = signal(8);
    const Value half = signal(4);
    const WrongCalls get(table, "get_subband");
    for (const Value& wrong : {unrealColumn(), nestedColumn()})
        get.give(notVector, 1, {{wrong, unreal, unreal}});
    get.give(notReal, 2, {{v, unreal, unreal}});
    get.give(notReal, 3, {{v, 2.5, unreal}});
    get.give(notWhole, 2, {{v, 2.5, 0.5}, {v, -0.5, 0}, {v, NaN, 0}});
    get.give(noLevel, 2, {{v, -1, 0.5}, {v, inf, 0.5}, {v, twoTo32, 0.5}});
    get.give(notWhole, 3, {{v, 9, 0.5}, {v, 1, NaN}});
    get.give(noIndex, 3, {{v, 9, -1}, {v, 9, twoTo32}});
    get.give(noLevel, 2, {{v, 9, 600}, {signal(0), 1, 0}, {v, 4, 0}, {v, twoTo32 - 1, 0}});
    get.give(noIndex, 3, {{v, 1, 2}, {v, 1, inf}, {v, 1, twoTo32 - 1}});

    const WrongCalls put(table, "put_subband");
    put.give(notVector, 1, {{unrealColumn(), unreal, unreal, unrealColumn()}});
    put.give(notReal, 2, {{v, unreal, unreal, unrealColumn()}});
    put.give(notReal, 3, {{v, -1, unreal, unrealColumn()}});
    put.give(notVector, 4, {{v, -1, -1, unrealColumn()}});
    put.give(noLevel, 2, {{v, -1, -1, half}, {v, -0.5, -1, half}, {v, NaN, -1, half}});
    put.give(noLevel, 2, {{v, twoTo32 - 0.5, -1, half}, {v, 64.5, 0, half}});
    put.give(noIndex, 3, {{v, 9, -1, half}, {v, 1, -0.5, half}, {v, 1, NaN, half}, {v, 1, inf, half}});
    put.give(noLevel, 2, {{v, 9, 600, half}});
    put.give(noIndex, 3, {{v, 1, 2.5, v}});
    for (const int n : {0, 3, 5, 8}) put.give(wrongDimensions, 4, {{v, 1, 1, signal(n)}});

    // These give the index themselves: a complaint about it is about the call.
    for (const char* name : {"get_smooth", "get_detail"}) {
        const WrongCalls named(table, name);
        named.give(notVector, 1, {{unrealColumn(), unreal}});
        named.give(notReal, 2, {{v, unreal}});
        named.give(notWhole, 2, {{v, 2.5}});
        named.give(noLevel, 2, {{v, 4}});
    }
    for (const char* name : {"put_smooth", "put_detail"}) {
        const WrongCalls named(table, name);
        named.give(notVector, 1, {{unrealColumn(), unreal, unrealColumn()}});
        named.give(notReal, 2, {{v, unreal, unrealColumn()}});
        named.give(notVector, 3, {{v, -1, unrealColumn()}});
        named.give(noLevel, 2, {{v, 4, v}, {v, -0.5, v}});
        named.give(wrongDimensions, 3, {{v, 1, signal(5)}});
    }
    WrongCalls(table, "get_detail").give(noIndex, 0, {{v, 0}});
    WrongCalls(table, "put_detail").give(noIndex, 0, {{v, 0, v}, {v, 0.5, half}});
}

// About block (level, i, j), in the order of the checks.
void addBlocks(const WrongCalls& wrong) {
    const Value six = image(6, 6);
    wrong.give(notArray, 1, {{unrealRows(), unreal, unreal, unreal}});
    wrong.give(notReal, 2, {{six, -0.5 + unreal, unreal, unreal}});
    wrong.give(notReal, 3, {{six, -0.5, 0.5 + unreal, unreal}});
    wrong.give(notReal, 4, {{six, -0.5, 0.5, 0.5 + unreal}});
    wrong.give(notWhole, 2, {{six, -0.5, 0.5, 0.5}});
    wrong.give(noLevel, 2, {{six, -1, 0.5, 0.5}, {six, twoTo32, 0.5, 0.5}, {six, inf, 0.5, 0.5}});
    wrong.give(notWhole, 3, {{six, 3, -0.5, 0.5}, {six, 3, NaN, -1}});
    wrong.give(notWhole, 4, {{six, 3, -1, 0.5}});
    wrong.give(noLevel, 2, {{six, 3, -1, -1}, {six, twoTo32 - 1, -1, -1}, {image(8, 4), 3, 0, 0}});
    wrong.give(noLevel, 2, {{image(4, 8), 3, 0, 0}, {image(8, 1), 1, 0, 0}});
    wrong.give(noIndex, 3, {{six, 1, -1, 2}, {six, 1, twoTo32, -1}, {six, 1, inf, 0}});
    wrong.give(noIndex, 3, {{six, 1, 2, 2}, {six, 0, 1, 0}});
    wrong.give(noIndex, 4, {{six, 1, 1, -1}, {six, 1, 1, twoTo32}, {six, 2, 3, 4}});
}

void addNamedBlocks(std::vector<ErrorCase>& table) {
    const Value six = image(6, 6);
    const Value rows = unrealRows();
    const WrongCalls put(table, "put_subband2d");
    put.give(notReal, 4, {{six, 0.5, 0, 0.5 + unreal, rows}});
    put.give(notArray, 5, {{six, 0.5, 0, 0, rows}});
    put.give(noIndex, 4, {{six, 1, 0, 2, image(1, 1)}});
    put.give(wrongDimensions, 5, {{six, 1, 0, 0, image(3, 2)}, {six, 1, 0, 0, image(9, 1)}});

    const WrongCalls getSmooth(table, "get_smooth2d");
    getSmooth.give(notArray, 1, {{rows, unreal}});
    getSmooth.give(notReal, 2, {{six, 0.5 + unreal}});
    getSmooth.give(notWhole, 2, {{six, 0.5}});
    getSmooth.give(noLevel, 2, {{six, 3}});

    const WrongCalls getDetail(table, "get_detail2d");
    getDetail.give(notArray, 1, {{rows, unreal, "h"}});
    getDetail.give(notReal, 2, {{six, 0.5 + unreal, "h"}});
    for (const char* text : {"h", "HV", "", "S"}) getDetail.give(noOrientation, 3, {{six, 0.5, text}});
    getDetail.give(notWhole, 2, {{six, 0.5, "H"}});
    getDetail.give(noLevel, 2, {{six, 3, "H"}});
    for (const char* letter : {"H", "V", "D"}) getDetail.give(noIndex, 0, {{six, 0, letter}});

    const WrongCalls putSmooth(table, "put_smooth2d");
    putSmooth.give(notArray, 1, {{rows, unreal, rows}});
    putSmooth.give(notReal, 2, {{six, 0.5 + unreal, rows}});
    putSmooth.give(notArray, 3, {{six, 0.5, rows}});
    putSmooth.give(notWhole, 2, {{six, 0.5, six}});
    putSmooth.give(noLevel, 2, {{six, 3, six}});
    putSmooth.give(wrongDimensions, 3, {{six, 1, six}});

    const WrongCalls putDetail(table, "put_detail2d");
    putDetail.give(notArray, 1, {{rows, unreal, rows, "HV"}});
    putDetail.give(notReal, 2, {{six, 0.5 + unreal, rows, "HV"}});
    putDetail.give(noOrientation, 4, {{six, 0.5, rows, "HV"}, {six, 0.5, six, "h"}});
    putDetail.give(notArray, 3, {{six, 0.5, rows, "h"}});
    putDetail.give(notWhole, 2, {{six, 0.5, six, "H"}});
    putDetail.give(noIndex, 0, {{six, 0, six, "D"}});
    putDetail.give(wrongDimensions, 3, {{six, 1, six, "D"}});
}

void addLevels(const WrongCalls& list) {
    list.give(notReal, 1, {{unreal, unreal}});
    list.give(notReal, 2, {{-1, unreal}});
    for (const double dimension : {0.0, 3.0, 1.5, NaN, inf}) list.give(noDimension, 2, {{NaN, dimension}});
    for (const int dimension : {1, 2}) {
        for (const double level : {0.5, -0.5, NaN}) list.give(notWhole, 1, {{level, dimension}});
        for (const double level : {-1.0, inf, -inf, twoTo32}) list.give(noLevel, 1, {{level, dimension}});
        for (const double level : {32.0, 64.0, twoTo32 - 1}) list.give(noMemory, 0, {{level, dimension}});
    }
    list.give(noMemory, 0, {{21, 1}, {11, 2}});
}

std::vector<ErrorCase> subbandErrors() {
    std::vector<ErrorCase> table;
    addParts(table);
    addBlocks({table, "get_subband2d"});
    addBlocks({table, "put_subband2d", {image(3, 3)}});
    addNamedBlocks(table);
    addLevels({table, "create_level"});
    return cases(table);
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(Subbands, Errors, testing::ValuesIn(subbandErrors()), nameOfError);
