// The pack under test, and short ways to call it.
#pragma once

#include <gtest/gtest.h>
#include <filesystem>

#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "support/test_host.h"

using efihost::Value;

using Numbers = std::vector<double>;
using Arguments = std::vector<Value>;

inline constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
inline constexpr double inf = std::numeric_limits<double>::infinity();

inline Arguments joined(Arguments first, const Arguments& last) {
    first.insert(first.end(), last.begin(), last.end());
    return first;
}

inline const efihost::Pack& pack() {
    static const efihost::Pack loaded(UNDULA_PACK_PATH);
    return loaded;
}

// A copy of the pack's library, in which nothing has been selected or made yet.
class FreshPack {
 public:
    FreshPack();
    ~FreshPack();
    FreshPack(const FreshPack&) = delete;
    FreshPack& operator=(const FreshPack&) = delete;

    operator const efihost::Pack&() const { return *pack_; }

 private:
    std::filesystem::path file_;
    std::optional<efihost::Pack> pack_;
};

// A host for one test, which must leave nothing behind. Results are dropped before it is.
class PackTest : public testing::Test {
 protected:
    ~PackTest() override { EXPECT_EQ(host.leaks(), TestHost::Leaks{}); }

    // The result; an error value throws.
    template <class... Arguments>
    Value call(std::string_view name, Arguments&&... arguments) {
        return host.call(pack(), name, std::forward<Arguments>(arguments)...);
    }
    // The numbers of a matrix, by columns.
    template <class... Arguments>
    Numbers numbers(std::string_view name, Arguments&&... arguments) {
        return call(name, std::forward<Arguments>(arguments)...).reals();
    }
    // "message (index)" of the error, or "no error".
    template <class... Arguments>
    std::string complaint(std::string_view name, Arguments&&... arguments) {
        return complaintOf(host.callRaw(pack(), name, {Value(std::forward<Arguments>(arguments))...}));
    }

    TestHost host;

 public:
    static std::string complaintOf(const Value& result) {
        if (!result) return "no result";
        if (!result.isError()) return "no error";
        return result.message() + " (" + std::to_string(result.argument()) + ")";
    }
};

inline Value column(const Numbers& values) {
    return Value::column(values);
}
inline Value row(const Numbers& values) {
    return Value::matrix(1, static_cast<int>(values.size()), values);
}

// Columns of four cells that are no arrays of real numbers.
Value unrealColumn();
Value nestedColumn();

// Numbers in [-1, 1] that show no pattern, different for each seed.
Numbers noise(std::size_t count, unsigned seed = 1);

// A real matrix whose columns lie further apart than their rows need; NaN lies between them, with
// imaginary parts that only a reader who strays would meet. The first column lies one number behind the
// beginning of a cache line, so that no vector in memory does.
Value strided(int rows, int cols, const Numbers& values);

// All that a value is made of, as numbers, nested values included; of a function only that it is one.
Numbers flat(const Value& value);

// Whether that is the same of two values, bit for bit.
bool same(const Value& a, const Value& b);

void expectNear(const Numbers& actual, const Numbers& expected, double tolerance);
