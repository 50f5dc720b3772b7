#include "cosine/bell.h"

#include <cmath>
#include <numbers>

namespace undula {

namespace {

// Sets r = b(1 - distance) of the built-in bell and sqrt(1 - r^2), whose difference would cancel
// near the end of the range: they are the cosine and the sine of one angle.
void sampleBuiltIn(double distance, double& rising, double& falling) {
    const double sine = std::sin(0.5 * std::numbers::pi * distance);
    const double angle = 0.5 * std::numbers::pi * sine * sine;
    rising = std::cos(angle);
    falling = std::sin(angle);
}

}  // namespace

bool sampleBell(std::uint64_t halfLength, double_to_double_func* bell, BellSamples& samples) {
    samples.rising = Array<double>::uninitialised(halfLength);
    samples.falling = Array<double>::uninitialised(halfLength);
    samples.halfLength = static_cast<std::ptrdiff_t>(halfLength);
    if (!samples.rising || !samples.falling) return false;
    const auto n = static_cast<double>(halfLength);
    for (std::size_t k = 0; k < halfLength; ++k) {
        const double midpoint = static_cast<double>(k) + 0.5;
        if (bell == nullptr) {
            sampleBuiltIn((n - midpoint) / (2.0 * n), samples.rising[k], samples.falling[k]);
        } else {
            const double b = bell->evaluate(0.5 + midpoint / (2.0 * n));
            samples.rising[k] = b;
            // Near 1 the difference of the squares would lose half the digits.
            samples.falling[k] = std::sqrt((1.0 - b) * (1.0 + b));
        }
    }
    return true;
}

}  // namespace undula
