// evaltbl, evalbs, applytbl, applybs with user functions of all kinds, extract_basis and
// basis_display2d; and what they say to tables and bases that a user has damaged.
#include <algorithm>
#include <limits>

#include "support/error_cases.h"
#include "support/packets.h"
#include "support/robustness.h"

namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double inf = std::numeric_limits<double>::infinity();

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

// The packet with its numbers changed.
template <class Change>
Value changing(Change change) {
    return functionOf([=](const Value& packet) {
        Grid grid = Grid::of(packet);
        for (double& x : grid.values) x = change(x);
        return grid.value();
    });
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

Grid element(const Value& table, int level) {
    return Grid::of(table.nested(level, 0));
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
    // A row of a list: its packet, and the numbers or the array beside it.
    void expectRow(const Value& list, int r, const TestPacket& packet, int dimensions) {
        EXPECT_EQ(list.at(r, 0), double(packet.level));
        EXPECT_EQ(list.at(r, 1), double(packet.row));
        if (dimensions == 2) {
            EXPECT_EQ(list.at(r, 2), double(packet.col));
        }
    }
};

TEST_F(PacketFunctions, AreEvaluatedOnEveryPacketOfATable) {
    for (const auto& [rows, cols, levels] : sizes) {
        const int dimensions = cols == 1 ? 1 : 2;
        const Value table = tableOf(rows, cols, levels);
        const Value sums = call("evaltbl", table, sum());
        const Value packets = call("evaltbl", table, unchanged());
        EXPECT_FALSE(sums.anyNested());
        EXPECT_EQ(sums.cols(), dimensions + 2);
        int r = 0;
        for (int j = 0; j <= levels; ++j) {
            for (const TestPacket& packet : wholeLevel(dimensions, j)) {
                const Value expected = packetOf(table.nested(j, 0), packet);
                expectRow(sums, r, packet, dimensions);
                expectRow(packets, r, packet, dimensions);
                EXPECT_TRUE(same(packets.nested(r, dimensions + 1), expected));
                double total = 0.0;
                for (const double x : expected.reals()) total += x;
                EXPECT_EQ(sums.at(r, dimensions + 1), total);
                ++r;
            }
        }
        EXPECT_EQ(sums.rows(), r);
        EXPECT_EQ(packets.rows(), r);
    }
}

TEST_F(PacketFunctions, SeeOddLengthsInTheOrderOfFrequency) {
    const Value length = functionOf([](const Value& packet) { return Value(packet.rows()); });
    const Value list = call("evaltbl", tableOf(10, 1, 3), length);
    EXPECT_EQ(Numbers(list.re(2).begin(), list.re(2).end()),
              Numbers({10, 5, 5, 3, 2, 2, 3, 2, 1, 1, 1, 1, 1, 1, 2}));
    const Value halves = call("evalbs", column(noise(5)), basisRows({{1, 0}, {1, 1}}), length);
    EXPECT_EQ(Numbers(halves.re(2).begin(), halves.re(2).end()), Numbers({3, 2}));
}

// In the order of its rows, each row for itself.
TEST_F(PacketFunctions, AreEvaluatedOnTheRowsOfABasis) {
    for (const auto& [rows, cols, levels] : sizes) {
        const int dimensions = cols == 1 ? 1 : 2;
        const Grid data = noisyGrid(rows, cols, 5);
        for (unsigned seed = 1; seed <= 10; ++seed) {
            Tiling tiling = randomTiling(dimensions, levels, seed);
            tiling.push_back(tiling.front());
            const Value read = strided(rows, cols, data.values);
            const Value list = call("evalbs", read, basisOf(dimensions, tiling), unchanged());
            ASSERT_EQ(list.rows(), static_cast<int>(tiling.size()));
            for (int r = 0; r < list.rows(); ++r) {
                const TestPacket& packet = tiling[static_cast<std::size_t>(r)];
                expectRow(list, r, packet, dimensions);
                EXPECT_TRUE(same(list.nested(r, dimensions + 1), packetOf(data.value(), packet)));
            }
        }
    }
    const Value mixed = call("evalbs", column({1, 2, 3, 4}), basisRows({{1, 1}, {1, 0}}),
                             functionOf([](const Value& p) { return p.reals()[0] == 1.0 ? Value(7) : p; }));
    EXPECT_TRUE(same(mixed.nested(0, 2), column({3, 4})));
    EXPECT_EQ(mixed.at(1, 2), 7.0);
}

TEST_F(PacketFunctions, ReplaceEveryPacketOfATable) {
    for (const auto& [rows, cols, levels] : sizes) {
        const Value table = tableOf(rows, cols, levels);
        EXPECT_TRUE(same(call("applytbl", table, unchanged()), table));
        const Value doubled = call("applytbl", table, changing([](double x) { return 2.0 * x; }));
        for (int j = 0; j <= levels; ++j) {
            Grid expected = element(table, j);
            for (double& x : expected.values) x *= 2.0;
            EXPECT_TRUE(same(doubled.nested(j, 0), expected.value()));
        }
    }
}

TEST_F(PacketFunctions, ReplaceThePacketsOfABasis) {
    for (const auto& [rows, cols, levels] : sizes) {
        const int dimensions = cols == 1 ? 1 : 2;
        const Grid data = noisyGrid(rows, cols, 5);
        const Tiling tiling = randomTiling(dimensions, levels, 3);
        const Value basis = basisOf(dimensions, tiling);
        EXPECT_TRUE(same(call("applybs", data.value(), basis, unchanged()), data.value()));
        // Every packet becomes a number of its own.
        Grid expected = data;
        double next = 0.0;
        for (const TestPacket& packet : tiling) {
            const Place place = placeOf(rows, cols, packet);
            expected.put(place,
                         {place.rows.length, place.cols.length,
                          Numbers(static_cast<std::size_t>(place.rows.length * place.cols.length), ++next)});
        }
        double count = 0.0;
        const Value counting = functionOf([&](const Value& packet) {
            const Numbers values(static_cast<std::size_t>(packet.rows() * packet.cols()), count += 1.0);
            return strided(packet.rows(), packet.cols(), values);
        });
        EXPECT_TRUE(same(call("applybs", data.value(), basis, counting), expected.value()));
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

// What a function may do, besides answering properly.
struct Answer {
    Value value;
    const char* eval;   // what evaltbl and evalbs say, with the function's position to come
    const char* apply;  // the same of applytbl and applybs
};

TEST_F(PacketFunctions, AnswersAreJudged) {
    constexpr const char* notForEval = "wavelet function must return real scalar or real array";
    constexpr const char* notForApply = "wavelet function must return real array";
    constexpr const char* misfit = "wavelet function input and output array size mismatch";
    constexpr const char* fine = "no error";
    const Numbers four = {1, 2, 3, 4};
    const std::vector<Answer> answers = {
        {"text", notForEval, notForApply},
        {Value(), notForEval, notForApply},
        {Value::ofTag(16), notForEval, notForApply},
        {unchanged(), notForEval, notForApply},
        {std::complex(1.0, 2.0), notForEval, notForApply},
        {std::complex(1.0, nan), notForEval, notForApply},
        {Value::column(four, Numbers{0, 0, 0, 1}), notForEval, notForApply},
        {Value::column(four, Numbers{0, 0, 0, nan}), notForEval, notForApply},
        {Value::table({1, 2, column({1}), 4}), notForEval, notForApply},
        {std::complex(1.0, -0.0), fine, notForApply},
        {nan, fine, notForApply},
        {row(four), fine, misfit},
        {column({1, 2, 3}), fine, misfit},
        {column({1, 2, 3, 4, 5}), fine, misfit},
        {column({}), fine, misfit},
        {Value::matrix(4, 2, Numbers(8)), fine, misfit},
        {Value::matrix(4, 0, Numbers{}), fine, misfit},
        {Value::column(four, Numbers{0, 0, -0.0, 0}), fine, fine},
        {Value::adopt(4, 1, nullptr), fine, fine},
        {column({nan, inf, -inf, 0}), fine, fine},
        {Value::error("mine", 7), "mine (7)", "mine (7)"},
    };
    const Value data = column(noise(4));
    const Value root = basisRows({{0, 0}});
    const auto expect = [&](const char* name, const std::vector<Value>& arguments, std::string message) {
        if (message.back() != ')' && message != fine)
            message += " (" + std::to_string(arguments.size()) + ")";
        EXPECT_EQ(complaintOf(host.callRaw(pack(), name, arguments)), message) << name;
    };
    for (const Answer& answer : answers) {
        const Value f = always(answer.value);
        expect("evaltbl", {Value::table({data}), f}, answer.eval);
        expect("evalbs", {data, root, f}, answer.eval);
        expect("applytbl", {Value::table({data}), f}, answer.apply);
        expect("applybs", {data, root, f}, answer.apply);
    }
}

// Nothing of a first good answer is left when a later one fails.
TEST_F(PacketFunctions, EndAtTheFirstFailure) {
    struct Raised {};
    const Value table = tableOf(8, 1, 2);
    const Value data = column(noise(8));
    const Value basis = basisOf(1, wholeLevel(1, 2));
    const auto callAll = [&](const Value& f, auto&& judge) {
        judge("evaltbl", std::vector<Value>{table, f});
        judge("evalbs", std::vector<Value>{data, basis, f});
        judge("applytbl", std::vector<Value>{table, f});
        judge("applybs", std::vector<Value>{data, basis, f});
    };
    for (int k = 1; k <= 4; ++k) {
        int calls = 0;
        const auto failing = [&](std::function<Value()> failure) {
            return functionOf(
                [&calls, k, failure](const Value& packet) { return ++calls == k ? failure() : packet; });
        };
        callAll(failing([]() -> Value { throw Raised(); }),
                [&](const char* name, const std::vector<Value>& arguments) {
                    calls = 0;
                    EXPECT_THROW(host.callRaw(pack(), name, arguments), Raised);
                    EXPECT_EQ(calls, k);
                });
        callAll(failing([] { return Value::error("mine", 3); }),
                [&](const char* name, const std::vector<Value>& arguments) {
                    calls = 0;
                    EXPECT_EQ(complaintOf(host.callRaw(pack(), name, arguments)), "mine (3)");
                    EXPECT_EQ(calls, k);
                });
        callAll(unchanged(), [&](const char* name, const std::vector<Value>& arguments) {
            host.interruptEvaluationAt(k);
            EXPECT_EQ(complaintOf(host.callRaw(pack(), name, arguments)), "interrupted (0)");
            EXPECT_EQ(host.calls(Service::applyList), k);
        });
    }
}

TEST_F(PacketFunctions, MayCallTheLibrary) {
    const Value table = tableOf(8, 8, 2);
    const Value busy = functionOf([&](const Value& packet) {
        const Value filter = column({0.5, 0.5 + packet.reals()[0], 0.1});
        call("wpt", column(noise(16)), 2, filter);
        call("evaltbl", tableOf(4, 1, 1), sum());
        call("applybs", packet, basisRows({{0, 0, 0}}), unchanged());
        return packet;
    });
    EXPECT_TRUE(same(call("applytbl", table, busy), table));
    EXPECT_TRUE(same(call("evaltbl", table, busy), call("evaltbl", table, unchanged())));
}

// --- extract_basis, basis_display2d ---

TEST_F(PacketFunctions, ExtractionTakesEachPacketFromItsLevel) {
    for (const auto& [rows, cols, levels] : sizes) {
        const int dimensions = cols == 1 ? 1 : 2;
        const Value table = tableOf(rows, cols, levels);
        for (int j = 0; j <= levels; ++j) {
            EXPECT_TRUE(same(call("extract_basis", table, basisOf(dimensions, wholeLevel(dimensions, j))),
                             table.nested(j, 0)));
        }
        for (unsigned seed = 1; seed <= 10; ++seed) {
            const Tiling tiling = randomTiling(dimensions, levels, seed);
            Grid expected = element(table, 0);
            for (const TestPacket& packet : tiling) {
                const Place place = placeOf(rows, cols, packet);
                expected.put(place, element(table, packet.level).part(place));
            }
            EXPECT_TRUE(same(call("extract_basis", table, basisOf(dimensions, tiling)), expected.value()));
        }
    }
}

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
    for (const Tiling& tiling : allTilings(2, 2)) {
        EXPECT_TRUE(same(call("basis_display2d", basisOf(2, tiling)), pictureOf(tiling).value()));
    }
    for (unsigned seed = 1; seed <= 5; ++seed) {
        Tiling tiling = randomTiling(2, 7, seed);
        tiling.push_back(tiling.front());
        EXPECT_TRUE(same(call("basis_display2d", basisOf(2, tiling)), pictureOf(tiling).value()));
    }
    const Value quarters = call("basis_display2d", basisOf(2, wholeLevel(2, 1)));
    for (int i = 0; i < 128; ++i) {
        for (const int border : {0, 63, 127}) EXPECT_EQ(quarters.at(border, i), 0.0);
        for (const int border : {0, 64, 127}) EXPECT_EQ(quarters.at(i, border), 0.0);
    }
    EXPECT_EQ(std::ranges::count(quarters.reals(), 0.0), 3 * 128 + 3 * 125);
    EXPECT_EQ(std::ranges::count(call("basis_display2d", basisOf(2, wholeLevel(2, 7))).reals(), 255.0), 0);
}

// --- errors ---

Value complexColumn() {
    return Value::column(Numbers{1, 2, 3, 4}, Numbers{0, 0, 0, 1});
}

struct BadTable {
    Value table;
    const char* message;
};

// A table whose cells hold numbers where scalars are given.
Value withNumbers(const std::vector<Value>& cells) {
    Numbers numbers;
    for (const Value& cell : cells) numbers.push_back(cell.isScalar() ? cell.real() : 0.0);
    Value table = column(numbers);
    for (std::size_t r = 0; r < cells.size(); ++r) {
        if (!cells[r].isScalar()) table.nest(static_cast<int>(r), 0, cells[r]);
    }
    return table;
}

// As a user might damage a table of a signal of 8 samples and two levels, or of an 8 x 4 image.
std::vector<BadTable> badTables() {
    const Value eight = column(noise(8));
    const Value image = noisyGrid(8, 4).value();
    const Value inner = Value::table({eight, eight});
    constexpr const char* invalid = "invalid packet table";
    constexpr const char* noArray = "must be array";
    std::vector<BadTable> tables = {
        {complexColumn(), "must be real vector"},
        {column({}), invalid},
        {eight, invalid},
        {column({nan}), invalid},
        {withNumbers({5, eight, eight}), invalid},
        {withNumbers({eight, 5, eight}), invalid},
        {withNumbers({"text", eight, 5}), invalid},
        {Value::table({"text", eight, eight}), noArray},
        {Value::table({eight, 5, eight}), noArray},  // a scalar value, not a number
        {Value::table({eight, eight, "text"}), noArray},
        {Value::table({eight, Value::ofTag(TagFunction)}), noArray},
        {Value::table({eight, column(noise(7)), eight}), invalid},
        {Value::table({eight, eight, column(noise(9))}), invalid},
        {Value::table({eight, row(noise(8))}), invalid},
        {Value::table({image, Value::matrix(4, 8, noise(32))}), invalid},
        {Value::table({image, eight}), invalid},
        {Value::table({eight, column({})}), invalid},
        {Value::table({eight, column(noise(7)), "text"}), invalid},
        {Value::table({eight, "text", column(noise(7))}), noArray},
        {Value::table({inner, inner}), invalid},
        {Value::table({eight, inner}), invalid},
        {Value::table({inner}), invalid},
        {Value::table(std::vector<Value>(5, eight)), invalid},
        {Value::table(std::vector<Value>(33, eight)), invalid},
        {Value::table(std::vector<Value>(5000, eight)), invalid},
        {Value::table({eight, "text", eight, eight, eight}), invalid},
        {Value::table({"text", eight, eight, eight, eight}), noArray},
        {Value::table(std::vector<Value>(4, image)), invalid},
        {Value::table(std::vector<Value>(4, noisyGrid(3, 8).value())), invalid},
        {Value::table(std::vector<Value>(2, row(noise(8)))), invalid},
        {Value::table({column({}), column({})}), invalid},
        {Value::table(std::vector<Value>(2, Value::matrix(0, 4, Numbers{}))), invalid},
        {Value::table(std::vector<Value>(2, column({1}))), invalid},
    };
    Value strange = Value::column(Numbers{0, 0}, Numbers{0, 1});
    strange.nest(0, 0, eight);
    tables.push_back({strange, "must be real vector"});
    return tables;
}

std::vector<ErrorCase> functionErrors() {
    std::vector<ErrorCase> table;
    const auto add = [&](const char* name, std::vector<Value> arguments, const char* message, int index) {
        table.push_back({name, std::move(arguments), message, index});
    };
    const Value f = always("never called with success");
    const Value eight = column(noise(8));
    const Value image = noisyGrid(8, 4).value();
    const Value root = basisRows({{0, 0}});
    const Value complexBasis = Value::matrix(1, 2, Numbers{0, 0}, Numbers{0, 1});
    for (const auto& [damaged, message] : badTables()) {
        for (const char* name : {"best_basis", "evaltbl", "applytbl"}) add(name, {damaged, f}, message, 1);
        add("extract_basis", {damaged, root}, message, 1);
    }

    // A basis with coefficients, or with a table: the deepest level last.
    struct Bad {
        Value basis;
        const char* message;
    };
    constexpr const char* badBasis = "invalid packet basis";
    constexpr const char* tooDeep = "invalid level in packet basis";
    const std::vector<Bad> ofSignals = {
        {complexBasis, "must be real array"},        {Value::table({root, root}), "must be real array"},
        {basisRows({{20, 0.5}}), "must be integer"}, {basisRows({{nan, 0}}), "must be integer"},
        {basisRows({{-1, nan}}), badBasis},          {basisRows({{20, 0}}), badBasis},
        {basisRows({{4294967296.0, 0}}), badBasis},  {basisRows({{inf, nan}}), badBasis},
        {basisRows({{1, 0}, {1, 2}}), badBasis},     {basisRows({{1, 0}, {1, 0}}), badBasis},
        {Value::matrix(0, 2, Numbers{}), badBasis},  {basisOf(1, wholeLevel(1, 4)), tooDeep},
    };
    const std::vector<Bad> ofImages = {
        {basisRows({{20, 0, 0.5}}), "must be integer"},
        {basisRows({{20, -1, 0.5}}), badBasis},
        {basisRows({{20, 0, 0}}), badBasis},
        {Value::matrix(0, 3, Numbers{}), badBasis},
        {basisOf(2, wholeLevel(2, 3)), tooDeep},
    };
    const Value ofEight = tableOf(8, 1, 3);
    const Value ofImage = tableOf(8, 4, 2);
    const Value damaged = withNumbers({eight, 5});
    for (const auto& [basis, message] : ofSignals) {
        for (const char* name : {"evalbs", "applybs"}) {
            add(name, {eight, basis, f}, message, 2);
            add(name, {complexColumn(), basis, f}, "must be real array", 1);
        }
        add("extract_basis", {ofEight, basis}, message, 2);
        add("extract_basis", {complexColumn(), basis}, "must be real vector", 1);
        // The basis before the table, but the table before the depth.
        if (message == tooDeep) {
            add("extract_basis", {damaged, basis}, "invalid packet table", 1);
        } else {
            add("extract_basis", {damaged, basis}, message, 2);
        }
    }
    for (const auto& [basis, message] : ofImages) {
        for (const char* name : {"evalbs", "applybs"}) add(name, {image, basis, f}, message, 2);
        add("extract_basis", {ofImage, basis}, message, 2);
    }
    for (const char* name : {"evalbs", "applybs"}) {
        for (const Value& basis :
             {column({nan}), basisRows({{nan, 0, 0}}), Value::matrix(1, 4, Numbers(4))}) {
            add(name, {eight, basis, f}, "must be 1 dimensional packet basis", 2);
        }
        for (const Value& basis : {column({nan}), basisRows({{nan, 0}}), Value::matrix(1, 4, Numbers(4))}) {
            add(name, {image, basis, f}, "must be 2 dimensional packet basis", 2);
            add(name, {row({1, 2}), basis, f}, "must be 2 dimensional packet basis", 2);
        }
        add(name, {column(noise(15)), basisOf(1, wholeLevel(1, 4)), f}, tooDeep, 2);
        add(name, {noisyGrid(8, 3).value(), basisOf(2, wholeLevel(2, 2)), f}, tooDeep, 2);
        add(name, {noisyGrid(3, 8).value(), basisOf(2, wholeLevel(2, 2)), f}, tooDeep, 2);
        add(name, {column({}), basisOf(1, wholeLevel(1, 1)), f}, tooDeep, 2);
    }
    for (const Value& basis :
         {column({nan}), Value::matrix(1, 4, Numbers(4, nan)), Value::matrix(2, 0, Numbers{})}) {
        add("extract_basis", {damaged, basis}, badBasis, 2);
    }
    // The other dimension, after the depth.
    add("extract_basis", {ofEight, basisOf(2, wholeLevel(2, 1))}, "must be 1 dimensional packet basis", 2);
    add("extract_basis", {ofImage, basisOf(1, wholeLevel(1, 1))}, "must be 2 dimensional packet basis", 2);
    add("extract_basis", {ofEight, basisOf(2, wholeLevel(2, 4))}, tooDeep, 2);
    add("extract_basis", {ofImage, basisOf(1, wholeLevel(1, 3))}, tooDeep, 2);
    add("extract_basis", {tableOf(8, 1, 1), basisOf(1, wholeLevel(1, 2))}, tooDeep, 2);

    const auto addPicture = [&](const Value& basis, const char* message) {
        add("basis_display2d", {basis}, message, 1);
    };
    addPicture(complexBasis, "must be real array");
    for (const Value& basis : {column({nan}), basisRows({{9, nan}}), Value::matrix(1, 4, Numbers(4))}) {
        addPicture(basis, "must be 2 dimensional packet basis");
    }
    for (const double level : {8.0, 8.5, 1e300, inf, 4294967296.0}) {
        addPicture(basisRows({{level, nan, -1}}), "too many levels to be displayed");
        addPicture(basisRows({{nan, 0, 0}, {level, 0, 0}}), "too many levels to be displayed");
    }
    addPicture(basisRows({{7.5, 0, 0}}), "must be integer");
    addPicture(basisRows({{nan, 0, 0}}), "must be integer");
    addPicture(basisRows({{7, 128, nan}}), badBasis);
    addPicture(basisRows({{7, nan, 128}}), "must be integer");
    addPicture(basisRows({{7, 127, 127}}), badBasis);
    addPicture(basisRows({{-1, 0, 0}}), badBasis);
    addPicture(Value::matrix(0, 3, Numbers{}), badBasis);
    return cases(table);
}

INSTANTIATE_TEST_SUITE_P(PacketFunctions, Errors, testing::ValuesIn(functionErrors()), nameOfError);

// --- troubles ---

TEST(PacketFunctionRobustness, PollsAsOftenAsSaidAndSurvivesEveryTrouble) {
    const auto given = [](std::vector<Value> arguments) { return [=](int) { return arguments; }; };
    const Value ofSignal = tableOf(5, 1, 2);
    const Value ofImage = tableOf(4, 5, 1);
    const Value signal = column(noise(5));
    const Value image = noisyGrid(4, 5).value();
    const Value rows = basisRows({{1, 1}, {2, 0}, {2, 1}});
    const Value blocks = basisOf(2, wholeLevel(2, 1));
    for (const Value& f : {unchanged(), sum()}) {
        expectRobust({"evaltbl", given({ofSignal, f})});
        expectRobust({"evaltbl", given({ofImage, f})});
        expectRobust({"evalbs", given({signal, rows, f})});
        expectRobust({"evalbs", given({image, blocks, f})});
    }
    expectRobust({"applytbl", given({ofSignal, unchanged()})});
    expectRobust({"applytbl", given({ofImage, unchanged()})});
    expectRobust({"applybs", given({signal, rows, unchanged()})});
    expectRobust({"applybs", given({image, blocks, unchanged()})});
    expectRobust({"extract_basis", given({ofSignal, rows}), 3});
    expectRobust({"extract_basis", given({ofImage, blocks}), 4});
    expectRobust({"basis_display2d", given({blocks}), 4});
}

}  // namespace
