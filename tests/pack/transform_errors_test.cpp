// What the filters and the periodic transforms say to arguments that they cannot take, in the order in
// which they look.
#include "support/packets.h"
#include "support/wrong_calls.h"

namespace {

constexpr const char* notEven = "must be even integer";

Value matrix(int rows, int cols, double first = 0.5) {
    Numbers values(static_cast<std::size_t>(rows * cols));
    for (double& value : values) value = std::exchange(first, 0.5);
    return Value::matrix(rows, cols, values);
}
// Scalars in the place of one argument; `before` stands in front of it.
void giveEach(const WrongCalls& wrong, const char* message, int index, const Arguments& before,
              const Numbers& scalars) {
    for (const double scalar : scalars) wrong.give(message, index, {joined(before, {scalar})});
}

void addFilters(std::vector<ErrorCase>& table) {
    for (const char* family : {"daublet", "symmlet", "coiflet"}) {
        const WrongCalls wrong(table, family);
        wrong.give(notReal, 1, {{2.0 + unreal}});
        giveEach(wrong, notEven, 1, {}, {3.5, -3.5, NaN, 7, twoTo32 - 1});
        giveEach(wrong, notPositive, 1, {}, {0, -2, -3, -inf});
        giveEach(wrong, noFilter, 1, {}, {32, twoTo32 - 2, twoTo32, twoTo32 + 1, 1e300, inf});
    }
    giveEach({table, "daublet"}, noFilter, 1, {}, {22, 30});
    giveEach({table, "symmlet"}, noFilter, 1, {}, {2, 22, 30});
    giveEach({table, "coiflet"}, noFilter, 1, {}, {2, 8, 20, 28});
}

// The transforms look at the wavelet first; the other arguments are wrong, too.
void addWavelets(const WrongCalls& dwt) {
    const auto refuse = [&](const char* message, int index, const Arguments& wavelet) {
        dwt.give(message, index, {joined({unrealColumn(), -1}, wavelet)});
    };
    for (const Value& wrong : {unrealColumn(), nestedColumn()}) {
        refuse(notArray, 3, {wrong});
        refuse(notArray, 3, {wrong, wrong, wrong});
        refuse(notArray, 4, {haar(), wrong});
        refuse(notArray, 4, {haar(), wrong, wrong});
        refuse(notArray, 5, {haar(), 0, wrong});
    }
    refuse(notArray, 4, {haar(), unreal});
    refuse(notArray, 5, {haar(), 0, unreal});

    for (const Value& filter :
         {column({}), matrix(0, 2), matrix(2, 0), matrix(2, 3), matrix(1, 3), matrix(101, 1), matrix(101, 2),
          Value::matrix(2, 2, Numbers{0.5, 0.5, 0, 0}), Value::matrix(2, 2, Numbers{0, 0, 0.5, 0.5}),
          Value::adopt(3, 2, nullptr), matrix(2, 1, NaN), matrix(2, 1, inf), matrix(2, 2, -inf)}) {
        refuse(noFilter, 3, {filter});
    }
    const Value pair = Value::matrix(3, 2, Numbers{0.5, 0.5, 0.0, 0.25, 0.5, 0.25});
    const Value none = row({0, 0});
    for (const double offset : {0.5, -0.5, NaN, inf, -inf, 0x1p24 + 1, -0x1p24 - 1, twoTo32}) {
        refuse(noFilter, 3, {haar(), offset});
        refuse(noFilter, 3, {pair, row({offset, 0})});
        refuse(noFilter, 3, {pair, row({0, offset}), none});
    }
    for (const double flip : {0.5, 2.0, -1.0, NaN, inf}) {
        refuse(noFilter, 3, {haar(), 0, flip});
        refuse(noFilter, 3, {pair, none, row({flip, 0})});
        refuse(noFilter, 3, {pair, none, row({0, flip})});
    }
    for (const Value& shape : {none, column({0, 0}), column({}), matrix(1, 0)}) {
        refuse(noFilter, 3, {haar(), shape});
        refuse(noFilter, 3, {haar(), 0, shape});
    }
    for (const Value& shape : {Value(0), matrix(2, 2), matrix(0, 2)}) {
        refuse(noFilter, 3, {pair, shape});
        refuse(noFilter, 3, {pair, none, shape});
    }
}

void addTransforms(std::vector<ErrorCase>& table, const char* name) {
    addWavelets({table, name});
    const WrongCalls wrong(table, name, {haar()});
    for (const Value& data :
         {unrealColumn(), nestedColumn(), Value::matrix(1, 2, Numbers{1, 2}, Numbers{0, NaN})})
        wrong.give(notArray, 1, {{data, unreal}});
    wrong.give(notReal, 2, {{signal(8), 2.0 + unreal}, {signal(8), std::complex(-1.0, NaN)}});
    giveEach(wrong, noLevel, 2, {signal(8)}, {-1, -0.5, NaN, inf, -inf, twoTo32, twoTo32 + 0.5});
    giveEach(wrong, notWhole, 2, {signal(8)}, {2.5, twoTo32 - 1.5, 1e-300});
    giveEach(wrong, noLevel, 2, {signal(8)}, {4, 31, 32, 63, 64, twoTo32 - 1});
    wrong.give(noLevel, 2, {{signal(12), 3}, {signal(1), 1}, {matrix(1, 8), 1}, {matrix(8, 8), 4}});
    wrong.give(noLevel, 2, {{matrix(8, 6), 2}, {matrix(6, 8), 2}});
    for (const Value& empty : {column({}), matrix(0, 4), matrix(4, 0)})
        giveEach(wrong, noLevel, 2, {empty}, {1, 31, 32, 64, twoTo32 - 1});
}

std::vector<ErrorCase> transformErrors() {
    std::vector<ErrorCase> table;
    addFilters(table);
    for (const char* name : {"dwt", "idwt"}) addTransforms(table, name);
    return cases(table);
}

}  // namespace

INSTANTIATE_TEST_SUITE_P(Transforms, Errors, testing::ValuesIn(transformErrors()), nameOfError);
