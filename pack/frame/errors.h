// What can go wrong, and how a failure travels: every routine of the pack that can fail returns a
// Failure, or a Result where it has a value to return.
#pragma once

#include <cstdint>
#include <utility>

struct Anyval;

namespace undula {

// The errors of errors.def, those with a number under that number.
enum class Code : std::int32_t {
    None = 0,
#define CODE(number, name, text) name = number,
#define MESSAGE(name, text) name,
#include "frame/errors.def"
};

// The message of a code; null for None, "unknown error" for a number that is no code.
const char* messageOf(Code code);

// The message of one of the platform's structured-exception codes.
const char* exceptionText(std::uint32_t code);

// What went wrong, and with which argument: 1-based, 0 for the call as a whole. False when nothing did.
struct Failure {
    Code code = Code::None;
    int argument = 0;
    Anyval* value = nullptr;  // an error value that a user function returned, passed on as it is

    constexpr Failure() = default;
    constexpr Failure(Code what, int where = 0) : code(what), argument(where) {}

    static Failure of(Anyval* errorValue) {
        Failure failure;
        failure.value = errorValue;
        return failure;
    }

    explicit constexpr operator bool() const { return code != Code::None || value != nullptr; }

    // The same about an argument. Lack of memory and interruption stay about the call as a whole.
    constexpr Failure at(int position) const {
        Failure moved = *this;
        if (code != Code::OutOfMemory && code != Code::Interrupted) moved.argument = position;
        return moved;
    }
};

// A value, or the failure that kept it from being made.
template <class T>
class [[nodiscard]] Result {
 public:
    Result(T value) : held(std::move(value)) {}
    Result(const Failure& why) : reason(why) {}
    Result(Code why) : reason(why) {}

    explicit operator bool() const { return !reason; }
    const Failure& failure() const { return reason; }
    T& operator*() { return held; }
    const T& operator*() const { return held; }
    T* operator->() { return &held; }
    const T* operator->() const { return &held; }

 private:
    T held{};
    Failure reason;
};

// Moves a failure about argument i to argument positions[i - 1], 0 for one that the user did not write.
template <int count>
constexpr Failure reposition(Failure failure, const int (&positions)[count]) {
    if (failure.argument >= 1 && failure.argument <= count)
        failure.argument = positions[failure.argument - 1];
    return failure;
}

template <class T, int count>
Result<T> reposition(Result<T> result, const int (&positions)[count]) {
    if (result) return result;
    return reposition(result.failure(), positions);
}

}  // namespace undula
