// A published low-pass filter, and what gives it the sum sqrt(2).
#pragma once

#include <cstddef>
#include <cstdint>

namespace undula::tables {

enum class Scaling { None, DividedByRoot, TimesRoot };

struct Published {
    const double* taps;
    std::int32_t length;
    Scaling scaling;

    template <std::size_t n>
    constexpr Published(const double (&values)[n], Scaling factor = Scaling::None)
        : taps(values), length(static_cast<std::int32_t>(n)), scaling(factor) {}
};

}  // namespace undula::tables
