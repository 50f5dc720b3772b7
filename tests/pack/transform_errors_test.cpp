// What the filters, the transforms and the accessors of subbands say to arguments that they cannot
// take, in the order in which they look.
#include <limits>

#include "support/error_cases.h"

namespace {

constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
constexpr double inf = std::numeric_limits<double>::infinity();
constexpr double twoTo32 = 4294967296.0;
constexpr double twoTo53 = 9007199254740992.0;
constexpr std::complex<double> complexNumber = {2.0, 1.0};

Value signal(std::size_t n) {
    return column(noise(n));
}
Value image(int rows, int cols) {
    return Value::matrix(rows, cols, noise(static_cast<std::size_t>(rows * cols)));
}
Value complexColumn() {
    return Value::column(Numbers{1, 2, 3, 4}, Numbers{0, 0, 0, 1});
}
Value nestedColumn() {
    return Value::table({1, column({1, 2}), 3, 4});
}
Value haar() {
    return column({0.7071067811865475, 0.7071067811865475});
}
Value pairOfFilters() {
    return Value::matrix(3, 2, Numbers{0.5, 0.5, 0.0, 0.25, 0.5, 0.25});
}

void addFilterCases(std::vector<ErrorCase>& table) {
    struct Length {
        Value length;
        const char* message;
    };
    const std::vector<Length> lengths = {
        {complexNumber, "must be real"},        {3.5, "must be even integer"},
        {-3.5, "must be even integer"},         {NaN, "must be even integer"},
        {0, "must be positive integer"},        {-2, "must be positive integer"},
        {-3, "must be positive integer"},       {-inf, "must be positive integer"},
        {inf, "filter unimplemented"},          {twoTo32, "filter unimplemented"},
        {twoTo32 + 1, "filter unimplemented"},  {twoTo53, "filter unimplemented"},
        {1e300, "filter unimplemented"},        {4294967295.0, "must be even integer"},
        {4294967294.0, "filter unimplemented"}, {7, "must be even integer"},
        {32, "filter unimplemented"},
    };
    for (const char* family : {"daublet", "symmlet", "coiflet"}) {
        for (const auto& [length, message] : lengths) table.push_back({family, {length}, message, 1});
    }
    for (const int length : {22, 30}) {
        table.push_back({"daublet", {length}, "filter unimplemented", 1});
        table.push_back({"symmlet", {length}, "filter unimplemented", 1});
    }
    table.push_back({"symmlet", {2}, "filter unimplemented", 1});
    for (const int length : {2, 8, 20, 28}) table.push_back({"coiflet", {length}, "filter unimplemented", 1});
}

// Wrong levels of a transform, besides data of 8 samples or 8 x 8.
struct Level {
    Value level;
    const char* message;
};
std::vector<Level> wrongLevels() {
    return {
        {complexNumber, "must be real"},
        {std::complex(-1.0, NaN), "must be real"},
        {-1, "invalid level"},
        {-0.5, "invalid level"},
        {NaN, "invalid level"},
        {inf, "invalid level"},
        {-inf, "invalid level"},
        {twoTo32, "invalid level"},
        {twoTo32 + 0.5, "invalid level"},
        {twoTo53, "invalid level"},
        {2.5, "must be integer"},
        {4294967294.5, "must be integer"},
        {1e-300, "must be integer"},
        {4, "invalid level"},
        {31, "invalid level"},
        {32, "invalid level"},
        {63, "invalid level"},
        {64, "invalid level"},
        {4294967295.0, "invalid level"},
    };
}

// Arguments of which none but the wavelet's are wrong, and of which all are.
void addWaveletCases(std::vector<ErrorCase>& table, const char* name) {
    const auto add = [&](std::vector<Value> arguments, const char* message, int index) {
        table.push_back({name, std::move(arguments), message, index});
    };
    const Value real = signal(8);
    const Value wrong = complexColumn();
    for (const Value& unreal : {complexColumn(), nestedColumn()}) {
        add({real, 1, unreal}, "must be real array", 3);
        add({wrong, -1, unreal}, "must be real array", 3);
        add({real, 1, haar(), unreal}, "must be real array", 4);
        add({real, 1, haar(), 0, unreal}, "must be real array", 5);
        add({wrong, -1, unreal, unreal, unreal}, "must be real array", 3);
        add({wrong, -1, haar(), unreal, unreal}, "must be real array", 4);
    }
    add({real, 1, haar(), complexNumber}, "must be real array", 4);
    add({real, 1, haar(), 0, complexNumber}, "must be real array", 5);

    const auto refuses = [&](const Value& filter) { add({wrong, -1, filter}, "filter unimplemented", 3); };
    refuses(column({}));
    refuses(Value::matrix(0, 2, Numbers{}));
    refuses(Value::matrix(2, 0, Numbers{}));
    refuses(Value::matrix(2, 3, Numbers(6, 0.5)));
    refuses(row(Numbers(3, 0.5)));
    refuses(Value::matrix(2, 2, Numbers{0.5, 0.5, 0.0, 0.0}));
    refuses(Value::matrix(2, 2, Numbers{0.0, 0.0, 0.5, 0.5}));
    refuses(Value::adopt(3, 2, nullptr));
    refuses(column({0.5, NaN}));
    refuses(column({inf, 0.5}));
    refuses(Value::matrix(2, 2, Numbers{0.5, 0.5, 0.5, -inf}));
    refuses(column(Numbers(101, 0.01)));
    refuses(Value::matrix(101, 2, Numbers(202, 0.01)));

    const auto refusesOffsets = [&](const Value& filter, const Value& offsets) {
        add({wrong, -1, filter, offsets}, "filter unimplemented", 3);
        add({wrong, -1, filter, offsets, offsets.isMatrix() && offsets.cols() == 2 ? row({0, 0}) : Value(0)},
            "filter unimplemented", 3);
    };
    for (const double offset : {0.5, -0.5, NaN, inf, -inf, 16777217.0, -16777217.0, twoTo32, 1e300}) {
        refusesOffsets(haar(), offset);
        refusesOffsets(pairOfFilters(), row({offset, 0}));
        refusesOffsets(pairOfFilters(), row({0, offset}));
    }
    refusesOffsets(haar(), row({0, 0}));
    refusesOffsets(haar(), column({0, 0}));
    refusesOffsets(haar(), column({}));
    refusesOffsets(haar(), Value::matrix(1, 0, Numbers{}));
    refusesOffsets(pairOfFilters(), 0);
    refusesOffsets(pairOfFilters(), Value::matrix(2, 2, Numbers(4)));
    refusesOffsets(pairOfFilters(), Value::matrix(0, 2, Numbers{}));

    for (const double flip : {0.5, 2.0, -1.0, NaN, inf, -inf, 1.0 + 1e-15, twoTo32}) {
        add({wrong, -1, haar(), 0, flip}, "filter unimplemented", 3);
        add({wrong, -1, pairOfFilters(), row({0, 0}), row({flip, 0})}, "filter unimplemented", 3);
        add({wrong, -1, pairOfFilters(), row({0, 0}), row({0, flip})}, "filter unimplemented", 3);
    }
    add({wrong, -1, haar(), 0, row({0, 0})}, "filter unimplemented", 3);
    add({wrong, -1, haar(), 0, column({})}, "filter unimplemented", 3);
    add({wrong, -1, pairOfFilters(), row({0, 0}), 0}, "filter unimplemented", 3);
    add({wrong, -1, pairOfFilters(), row({0, 0}), Value::matrix(2, 2, Numbers(4))}, "filter unimplemented",
        3);
}

void addTransformCases(std::vector<ErrorCase>& table, const char* name) {
    const auto add = [&](std::vector<Value> arguments, const char* message, int index) {
        table.push_back({name, std::move(arguments), message, index});
    };
    addWaveletCases(table, name);
    for (const Value& unreal :
         {complexColumn(), nestedColumn(), Value::matrix(1, 2, Numbers{1, 2}, Numbers{0, NaN})}) {
        add({unreal, 0, haar()}, "must be real array", 1);
        add({unreal, complexNumber, haar(), 0, 0}, "must be real array", 1);
    }
    for (const auto& [level, message] : wrongLevels()) {
        for (const Value& data : {signal(8), image(8, 8)}) add({data, level, haar()}, message, 2);
        add({signal(8), level, pairOfFilters(), row({0, 0})}, message, 2);
    }
    add({signal(12), 3, haar()}, "invalid level", 2);
    add({signal(1), 1, haar()}, "invalid level", 2);
    add({image(1, 8), 1, haar()}, "invalid level", 2);
    add({image(8, 6), 2, haar()}, "invalid level", 2);
    add({image(6, 8), 2, haar()}, "invalid level", 2);
    for (const double level : {1.0, 31.0, 32.0, 64.0, 4294967295.0}) {
        add({column({}), level, haar()}, "invalid level", 2);
        add({Value::matrix(0, 4, Numbers{}), level, haar()}, "invalid level", 2);
        add({Value::matrix(4, 0, Numbers{}), level, haar()}, "invalid level", 2);
    }
}

std::vector<ErrorCase> transformErrors() {
    std::vector<ErrorCase> table;
    addFilterCases(table);
    addTransformCases(table, "dwt");
    addTransformCases(table, "idwt");
    return cases(table);
}

// Levels and indices as the accessors that read check them, on a vector of 8.
std::vector<Level> wrongWholeLevels() {
    return {
        {2.5, "must be integer"},        {-0.5, "must be integer"},  {NaN, "must be integer"},
        {-1, "invalid level"},           {inf, "invalid level"},     {-inf, "invalid level"},
        {twoTo32, "invalid level"},      {twoTo53, "invalid level"}, {4, "invalid level"},
        {4294967295.0, "invalid level"}, {32, "invalid level"},      {64, "invalid level"},
    };
}

std::vector<Level> wrongTruncatedLevels() {
    return {
        {-0.5, "invalid level"},         {NaN, "invalid level"},     {-1, "invalid level"},
        {inf, "invalid level"},          {-inf, "invalid level"},    {twoTo32, "invalid level"},
        {4294967295.5, "invalid level"}, {twoTo53, "invalid level"}, {4, "invalid level"},
        {64.5, "invalid level"},
    };
}

std::vector<ErrorCase> subbandErrors() {
    std::vector<ErrorCase> table;
    const auto add = [&](const char* name, std::vector<Value> arguments, const char* message, int index) {
        table.push_back({name, std::move(arguments), message, index});
    };
    const Value v = signal(8);
    const Value half = signal(4);
    for (const Value& unreal : {complexColumn(), nestedColumn()}) {
        add("get_subband", {unreal, complexNumber, complexNumber}, "must be real vector", 1);
        add("put_subband", {unreal, complexNumber, complexNumber, unreal}, "must be real vector", 1);
        add("put_subband", {v, -1, -1, unreal}, "must be real vector", 4);
        for (const char* get : {"get_smooth", "get_detail"}) {
            add(get, {unreal, complexNumber}, "must be real vector", 1);
        }
        for (const char* put : {"put_smooth", "put_detail"}) {
            add(put, {unreal, complexNumber, unreal}, "must be real vector", 1);
            add(put, {v, -1, unreal}, "must be real vector", 3);
        }
    }
    add("get_subband", {v, complexNumber, complexNumber}, "must be real", 2);
    add("get_subband", {v, 2.5, complexNumber}, "must be real", 3);
    add("get_subband", {v, 2.5, 0.5}, "must be integer", 2);
    add("get_subband", {v, 9, 0.5}, "must be integer", 3);
    add("get_subband", {v, 9, -1}, "invalid packet index", 3);
    add("get_subband", {v, -1, 0.5}, "invalid level", 2);
    add("get_subband", {v, 9, 600}, "invalid level", 2);
    for (const auto& [level, message] : wrongWholeLevels()) add("get_subband", {v, level, 0}, message, 2);
    for (const double index : {0.5, -0.5, NaN}) add("get_subband", {v, 1, index}, "must be integer", 3);
    for (const double index : {-1.0, 2.0, inf, -inf, twoTo32, 4294967295.0, twoTo53}) {
        add("get_subband", {v, 1, index}, "invalid packet index", 3);
        add("put_subband", {v, 1, index, half}, "invalid packet index", 3);
    }
    add("get_subband", {column({}), 1, 0}, "invalid level", 2);
    add("get_subband", {signal(1), 1, 0}, "invalid level", 2);
    add("get_subband", {signal(7), 3, 0}, "invalid level", 2);

    add("put_subband", {v, complexNumber, complexNumber, complexColumn()}, "must be real", 2);
    add("put_subband", {v, -1, complexNumber, complexColumn()}, "must be real", 3);
    add("put_subband", {v, -1, -1, half}, "invalid level", 2);
    add("put_subband", {v, 9, -1, half}, "invalid packet index", 3);
    add("put_subband", {v, 9, 600, half}, "invalid level", 2);
    add("put_subband", {v, 1, 2, v}, "invalid packet index", 3);
    for (const auto& [level, message] : wrongTruncatedLevels())
        add("put_subband", {v, level, 0, half}, message, 2);
    for (const double index : {-0.5, NaN, 2.5}) {
        add("put_subband", {v, 1, index, half}, "invalid packet index", 3);
    }
    for (const std::size_t wrong : {0u, 3u, 5u, 8u}) {
        add("put_subband", {v, 1, 1, signal(wrong)}, "invalid subband dimensions", 4);
        add("put_smooth", {v, 1, signal(wrong)}, "invalid subband dimensions", 3);
        add("put_detail", {v, 1, signal(wrong)}, "invalid subband dimensions", 3);
    }

    for (const char* get : {"get_smooth", "get_detail"}) {
        add(get, {v, complexNumber}, "must be real", 2);
        for (const auto& [level, message] : wrongWholeLevels()) add(get, {v, level}, message, 2);
    }
    for (const char* put : {"put_smooth", "put_detail"}) {
        add(put, {v, complexNumber, complexColumn()}, "must be real", 2);
        for (const auto& [level, message] : wrongTruncatedLevels()) add(put, {v, level, half}, message, 2);
    }
    add("get_detail", {v, 0}, "invalid packet index", 0);
    add("put_detail", {v, 0, v}, "invalid packet index", 0);
    add("put_detail", {v, 0.5, half}, "invalid packet index", 0);

    add("create_level", {complexNumber, complexNumber}, "must be real", 1);
    add("create_level", {-1, complexNumber}, "must be real", 2);
    for (const double dimension : {0.0, 3.0, 1.5, NaN, inf, -1.0, twoTo32}) {
        add("create_level", {NaN, dimension}, "invalid dimension", 2);
    }
    for (const int dimension : {1, 2}) {
        for (const double level : {0.5, -0.5, NaN}) {
            add("create_level", {level, dimension}, "must be integer", 1);
        }
        for (const double level : {-1.0, inf, -inf, twoTo32, twoTo53}) {
            add("create_level", {level, dimension}, "invalid level", 1);
        }
        for (const double level : {32.0, 64.0, 4294967295.0}) {
            add("create_level", {level, dimension}, "out of memory", 0);
        }
    }
    add("create_level", {21, 1}, "out of memory", 0);
    add("create_level", {11, 2}, "out of memory", 0);
    return cases(table);
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(Transforms, Errors, testing::ValuesIn(transformErrors()), nameOfError);
INSTANTIATE_TEST_SUITE_P(Subbands, Errors, testing::ValuesIn(subbandErrors()), nameOfError);
