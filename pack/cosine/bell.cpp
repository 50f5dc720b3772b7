#include "cosine/bell.h"

#include <cmath>
#include <numbers>

namespace undula {

namespace {

double builtInBell(double x) {
    return std::sin(0.25 * std::numbers::pi * (1.0 - std::cos(std::numbers::pi * x)));
}

}  // namespace

bool sampleBell(std::uint64_t halfLength, double_to_double_func* bell, BellSamples& samples) {
    samples.rising = Array<double>::uninitialised(halfLength);
    samples.falling = Array<double>::uninitialised(halfLength);
    samples.halfLength = static_cast<std::ptrdiff_t>(halfLength);
    if (!samples.rising || !samples.falling) return false;
    for (std::size_t k = 0; k < halfLength; ++k) {
        const double x = 0.5 + (static_cast<double>(k) + 0.5) / (2.0 * static_cast<double>(halfLength));
        const double b = bell == nullptr ? builtInBell(x) : bell->evaluate(x);
        samples.rising[k] = b;
        samples.falling[k] = std::sqrt(1.0 - b * b);
    }
    return true;
}

}  // namespace undula
