// The pack's messages: error codes, and the codes of the platform's floating-point exceptions.
#pragma once

#include <cstdint>

namespace undula {

enum class Code : std::int32_t {
    None = 0,
    Interrupted = 1,
    MustBeInteger = 2,
    MustBeEvenInteger = 3,
    MustBePositiveInteger = 4,
    FilterUnimplemented = 5,
    OutOfMemory = 6,
    InvalidLevel = 7,
    InvalidSubbandDimensions = 8,
    FilterTooLong = 9,
    TooManyColumns = 10,
    FilterNotUserDefined = 11,
    InvalidPacketIndex = 12,
    NotSymmetric = 13,
    IntervalUnimplemented = 14,
    InvalidPacketBasis = 15,
    InvalidLevelInBasis = 16,
    MustBeOneDimensionalBasis = 17,
    MustBeTwoDimensionalBasis = 18,
    InvalidPacketTable = 19,
    InvalidDimension = 20,
    InternalFftError = 21,
    MustBeMatrix = 22,
    Unknown = 23,
};

// The text of a code; null for 0, "unknown error" for a code of no entry.
const char* errorText(std::int32_t code);

// The text of a structured-exception code of the platform.
const char* exceptionText(std::uint32_t code);

namespace text {
inline constexpr const char* mustBeReal = "must be real";
inline constexpr const char* mustBeRealArray = "must be real array";
inline constexpr const char* mustBeRealVector = "must be real vector";
}  // namespace text

// What went wrong, and with which argument: 1-based, 0 for the call as a whole. False when
// nothing did.
struct Failure {
    const char* message = nullptr;
    int argument = 0;

    Failure() = default;
    Failure(const char* what, int where) : message(what), argument(where) {}
    Failure(Code code, int where) : message(errorText(static_cast<std::int32_t>(code))), argument(where) {}

    explicit operator bool() const { return message != nullptr; }
};

// The failure of a code about an argument; lack of memory and interruption are about the call as a
// whole.
inline Failure failureAt(Code code, int argument) {
    if (code == Code::None) return {};
    return {code, code == Code::OutOfMemory || code == Code::Interrupted ? 0 : argument};
}

inline Failure outOfMemory() {
    return {Code::OutOfMemory, 0};
}
inline Failure interruption() {
    return {Code::Interrupted, 0};
}

}  // namespace undula
