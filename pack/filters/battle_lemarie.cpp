#include "filters/battle_lemarie.h"

#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace undula {

namespace {

constexpr std::size_t period = 1024;  // points of the Fourier transforms
constexpr std::int32_t centre = 19;
constexpr std::int32_t mostOrder = highestDegree + 1;

// cos(2 pi k / period) for every k.
using Cosines = std::array<double, period>;

Cosines cosines() {
    Cosines table = {};
    for (std::size_t k = 0; k < period; ++k) {
        table[k] = std::cos(2.0 * std::numbers::pi * static_cast<double>(k) / static_cast<double>(period));
    }
    return table;
}

// The cardinal B-spline of an order of at least 2, at an integer.
double cardinalSpline(std::int32_t order, std::int32_t x) {
    if (order == 2) return x == 1 ? 1.0 : 0.0;
    if (x <= 0 || x > order) return 0.0;
    return (x * cardinalSpline(order - 1, x) + (order - x) * cardinalSpline(order - 1, x - 1)) / (order - 1);
}

// The spline's products with its own integer shifts, from shift 0 on.
using Autocorrelation = std::array<double, mostOrder>;

Autocorrelation autocorrelation(std::int32_t order) {
    Autocorrelation values = {};
    for (std::int32_t shift = 0; shift < order; ++shift) {
        values[static_cast<std::size_t>(shift)] = cardinalSpline(2 * order, order + shift);
    }
    return values;
}

// The transform, at frequency m, of the even sequence that has the values at multiples of `spacing`.
double spectrum(const Autocorrelation& values, std::size_t spacing, std::size_t m, const Cosines& cosine) {
    double sum = values[0];
    for (std::size_t j = 1; j < values.size(); ++j) sum += 2.0 * values[j] * cosine[m * spacing * j % period];
    return sum;
}

// What makes the spline orthonormal: an even sequence, by its transform.
std::array<double, period / 2 + 1> orthonormaliser(std::int32_t order, const Cosines& cosine) {
    const Autocorrelation values = autocorrelation(order);
    std::array<double, period / 2 + 1> transform = {};
    for (std::size_t m = 0; m < transform.size(); ++m) {
        transform[m] = std::sqrt(std::fabs(spectrum(values, 1, m, cosine) / spectrum(values, 2, m, cosine)));
    }
    return transform;
}

// The inverse transform at one position.
double inverseTransform(const std::array<double, period / 2 + 1>& transform, std::int32_t position,
                        const Cosines& cosine) {
    const auto at = static_cast<std::size_t>(std::abs(position));
    double sum = transform[0] + transform[period / 2] * cosine[period / 2 * at % period];
    for (std::size_t m = 1; m < period / 2; ++m) sum += 2.0 * transform[m] * cosine[m * at % period];
    return sum / static_cast<double>(period);
}

}  // namespace

void computeBattleLemarie(std::int32_t degree, double* taps) {
    const std::int32_t order = degree + 1;
    const Cosines cosine = cosines();
    const auto transform = orthonormaliser(order, cosine);
    const double scale = std::numbers::sqrt2 / static_cast<double>(1 << order);
    for (std::int32_t tap = 0; tap < battleLemarieTaps(degree); ++tap) {
        double sum = 0.0;
        double binomial = 1.0;
        for (std::int32_t j = 0; j <= order; ++j) {
            sum += binomial * inverseTransform(transform, tap - centre + order / 2 - j, cosine);
            binomial = binomial * (order - j) / (j + 1);
        }
        taps[tap] = scale * sum;
    }
}

}  // namespace undula
