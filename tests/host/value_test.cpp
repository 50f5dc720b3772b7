#include <gtest/gtest.h>

#include <bit>
#include <cstdint>
#include <limits>
#include <memory>
#include <stdexcept>
#include <vector>

#include "efihost/value.h"

using efihost::liveValues;
using efihost::Value;

TEST(Value, RefusesWhatDoesNotFit) {
    const std::vector<double> five(5);
    const int million = 1'000'000;
    EXPECT_THROW(Value::matrix(2, 2, five), std::invalid_argument);
    EXPECT_THROW(Value::matrix(5, 1, five, std::vector<double>(4)), std::invalid_argument);
    EXPECT_THROW(Value::matrix(-1, -5, five), std::invalid_argument);
    EXPECT_THROW(Value::adopt(million, million, nullptr), std::length_error);
    EXPECT_THROW(Value::adopt(std::numeric_limits<int>::max(), std::numeric_limits<int>::max(), nullptr),
                 std::length_error);
    EXPECT_THROW(Value::adopt(1 << 29, 1, nullptr), std::length_error);  // 2^32 bytes
    EXPECT_NO_THROW(Value::adopt((1 << 29) - 1, 1, nullptr));
    EXPECT_THROW(Value::borrow(3, 1, 2, five.data(), nullptr, std::make_shared<int>()),
                 std::invalid_argument);
    EXPECT_THROW(Value::borrow(5, 1, 5, five.data(), nullptr, nullptr), std::invalid_argument);
    EXPECT_THROW(Value::table({Value(1), Value()}), std::invalid_argument);

    const Value column = Value::column(five);
    EXPECT_THROW(column.at(5, 0), std::out_of_range);
    EXPECT_THROW(column.at(0, -1), std::out_of_range);
    EXPECT_THROW(column.re(1), std::out_of_range);
    EXPECT_THROW(column.scalar(), std::logic_error);
    EXPECT_THROW(Value(1).matrix(), std::logic_error);
    EXPECT_THROW(Value().tag(), std::logic_error);
}

TEST(Value, ReleasesOnlyWhatItAloneHolds) {
    auto* given = static_cast<double*>(::operator new(4 * sizeof(double)));
    Value owner = Value::adopt(2, 2, given);
    const Value another = owner;
    EXPECT_EQ(owner.release(), nullptr);
    EXPECT_EQ(owner.matrix().re, given);
    Value borrowed = Value::borrow(2, 2, 2, given, nullptr, std::make_shared<Value>(owner));
    EXPECT_EQ(borrowed.release(), nullptr);
    Value sole = Value::adopt(1, 1, static_cast<double*>(::operator new(sizeof(double))));
    double* const released = sole.release();
    EXPECT_NE(released, nullptr);
    EXPECT_EQ(sole.reals(), std::vector<double>(1));
    ::operator delete(released);
}

TEST(Value, AdoptsAndBorrowsWithoutCopying) {
    auto* re = new double[4]{1, 2, 3, 4};
    EXPECT_EQ(Value::adopt(2, 2, re).matrix().re, re);
    EXPECT_EQ(Value::adopt(2, 2, nullptr).reals(), std::vector<double>(4));

    auto memory = std::make_shared<std::vector<double>>(std::vector<double>{1, 2, -1, 3, 4, -1});
    {
        const Value borrowed = Value::borrow(2, 2, 3, memory->data(), nullptr, memory);
        EXPECT_EQ(borrowed.matrix().re, memory->data());
        EXPECT_EQ(borrowed.reals(), (std::vector<double>{1, 2, 3, 4}));
        EXPECT_EQ(memory.use_count(), 2);
    }
    EXPECT_EQ(memory.use_count(), 1);
}

TEST(Value, IsFreedWithItsLastHandle) {
    const std::size_t before = liveValues();
    Value inner = Value::column(std::vector<double>{1, 2});
    const Anyval* raw = inner.raw();
    {
        const Value copy = inner;
        Value outer = Value::table({inner, Value(3), Value::table({copy})});
        EXPECT_EQ(liveValues(), before + 4);
        inner = Value();
        EXPECT_EQ(outer.nested(0, 0).raw(), raw);
        EXPECT_EQ(Value::of(raw).reals(), (std::vector<double>{1, 2}));
    }
    EXPECT_EQ(liveValues(), before);
    EXPECT_FALSE(Value::of(raw));
}

TEST(Value, NestsInSingleCells) {
    Value matrix = Value::matrix(2, 2, std::vector<double>{1, 2, 3, 4});
    EXPECT_FALSE(matrix.anyNested());
    matrix.nest(0, 1, Value("text"));
    EXPECT_TRUE(matrix.anyNested());
    EXPECT_EQ(matrix.nested(0, 1).text(), "text");
    EXPECT_FALSE(matrix.nested(1, 0));
    EXPECT_EQ(matrix.at(1, 0), 2.0);

    EXPECT_THROW(matrix.nest(2, 0, Value(1)), std::out_of_range);
    EXPECT_THROW(matrix.nest(0, 0, matrix), std::invalid_argument);
    EXPECT_THROW(matrix.nest(0, 0, Value()), std::invalid_argument);

    // A number whose bits are the address of a value is still a number.
    const auto address =
        std::bit_cast<double>(static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(matrix.raw())));
    EXPECT_FALSE(Value::column(std::vector<double>{address}).anyNested());
}

TEST(Value, FreesDeepNestingWithoutDeepRecursion) {
    const std::size_t before = liveValues();
    Value chain = Value::table({Value(1)});
    for (int depth = 0; depth < 500'000; ++depth) chain = Value::table({chain});
    chain = Value();
    EXPECT_EQ(liveValues(), before);
}
