// Wrong calls, by what is said to them:
//
//     const WrongCalls father(table, "father", {"haar"});
//     father.give(notWhole, 3, {{0, 0.5, 0.5}, {0, 0.5, NaN}});
#pragma once

#include <complex>
#include <limits>

#include "support/error_cases.h"

inline constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
inline constexpr double inf = std::numeric_limits<double>::infinity();
inline constexpr double twoTo31 = 0x1p31;
inline constexpr double twoTo32 = 0x1p32;
inline constexpr std::complex<double> unreal = {0.0, 1.0};

inline constexpr const char* notReal = "must be real";
inline constexpr const char* notArray = "must be real array";
inline constexpr const char* notWhole = "must be integer";
inline constexpr const char* notPositive = "must be positive integer";
inline constexpr const char* noLevel = "invalid level";
inline constexpr const char* noFilter = "filter unimplemented";
inline constexpr const char* notSymmetric = "not a symmetric wavelet";
inline constexpr const char* noInterval = "interval wavelets unimplemented";
inline constexpr const char* noIndex = "invalid packet index";
inline constexpr const char* noBasis = "invalid packet basis";
inline constexpr const char* tooDeep = "invalid level in packet basis";
inline constexpr const char* notOneDimensional = "must be 1 dimensional packet basis";
inline constexpr const char* notTwoDimensional = "must be 2 dimensional packet basis";
inline constexpr const char* noMemory = "out of memory";

// What an array of numbers must not hold.
inline Value unrealColumn() {
    return Value::column(Numbers{1, 2, 3, 4}, Numbers{0, 0, 0, 1});
}
inline Value unrealRows() {
    return Value::matrix(1, 2, Numbers{0, 0}, Numbers{0, 1});
}
inline Value nestedColumn() {
    return Value::table({1, column({1, 2}), 3, 4});
}

// Appends calls of a function to a table of errors; `last` follows the arguments of each.
class WrongCalls {
 public:
    WrongCalls(std::vector<ErrorCase>& table, std::string function, Arguments last = {})
        : table_(table), function_(std::move(function)), last_(std::move(last)) {}

    void give(const char* message, int index, const std::vector<Arguments>& calls) const {
        for (const Arguments& arguments : calls)
            table_.push_back({function_, joined(arguments, last_), message, index});
    }

 private:
    std::vector<ErrorCase>& table_;
    std::string function_;
    Arguments last_;
};

// Wrong wavelets, which are looked at before all other arguments.
inline void addWrongWavelets(const WrongCalls& wrong, const Arguments& before) {
    const int position = static_cast<int>(before.size()) + 1;
    const auto give = [&](const char* message, int index, const Arguments& wavelet) {
        wrong.give(message, index, {joined(before, wavelet)});
    };
    const Value good = column({0.5, 0.5});
    const Value bad = unrealColumn();
    give(notArray, position, {bad, bad, bad});
    give(notArray, position + 1, {good, unreal, bad});
    give(notArray, position + 2, {column({}), 0, unreal});
    give(noFilter, position, {good, 0.5});
    give(noFilter, position, {good, 0, 2});
}
