#include "cosine/dct4.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace undula {

namespace {

bool isEven(std::uint64_t length) {
    return length % 2 == 0;
}

std::uint64_t columnLength(std::uint64_t length) {
    return isEven(length) ? length / 2 : 4 * length;
}

// The cosines and sines of the angles first + k step, in half circles. Each run is the first one
// turned further, since a turn is far cheaper than a cosine and loses no more than its rounding.
void fillAngles(double first, double step, std::size_t count, double* cosines, double* sines) {
    constexpr std::size_t run = 64;
    for (std::size_t k = 0; k < std::min(run, count); ++k) {
        const double angle = std::numbers::pi * (first + static_cast<double>(k) * step);
        cosines[k] = std::cos(angle);
        sines[k] = std::sin(angle);
    }
    for (std::size_t start = run; start < count; start += run) {
        const double angle = std::numbers::pi * (static_cast<double>(start) * step);
        const double c = std::cos(angle);
        const double s = std::sin(angle);
        for (std::size_t k = 0; k < std::min(run, count - start); ++k) {
            cosines[start + k] = c * cosines[k] - s * sines[k];
            sines[start + k] = c * sines[k] + s * cosines[k];
        }
    }
}

}  // namespace

Result<const Dct4::Plan*> Dct4::plan(std::uint64_t length) {
    const Plan* const end = plans + planCount;
    const Plan* found = std::find_if(static_cast<const Plan*>(plans), end,
                                     [length](const Plan& p) { return p.length == length; });
    if (found != end) return found;
    if (planCount == mostPlans) return Code::Unknown;

    Plan& plan = plans[planCount];
    const std::uint64_t angles = isEven(length) ? length / 2 : length;
    plan.cosines = Array<double>::uninitialised(angles);
    plan.sines = Array<double>::uninitialised(angles);
    if (!plan.cosines || !plan.sines) return Code::OutOfMemory;
    // Of half a circle: an even length turns by (k + 1/8) / n, an odd one by (k + 1/2) / 2n.
    const auto n = static_cast<double>(length);
    const auto count = static_cast<std::size_t>(angles);  // fits, as the arrays are there
    if (isEven(length)) {
        fillAngles(0.125 / n, 1.0 / n, count, plan.cosines.data(), plan.sines.data());
    } else {
        fillAngles(0.25 / n, 0.5 / n, count, plan.cosines.data(), plan.sines.data());
    }
    const auto column = service.newColumn(service.host, columnLength(length));
    if (!column) return column.failure();
    plan.column = *column;
    plan.length = length;
    ++planCount;
    return &plan;
}

Failure Dct4::transform(double* line, std::uint64_t length) {
    const auto found = plan(length);
    if (!found) return found.failure();
    return isEven(length) ? transformEven(**found, line) : transformOdd(**found, line);
}

// Samples from both ends are paired to complex numbers, and so are the coefficients: place 2 i with the
// i-th odd place from the end.
Failure Dct4::transformEven(const Plan& plan, double* line) {
    const auto pairs = static_cast<std::size_t>(plan.length) / 2;
    const double* cosines = plan.cosines.data();
    const double* sines = plan.sines.data();
    for (std::size_t i = 0; i < pairs; ++i) {
        const double first = line[2 * i];
        const double second = line[2 * (pairs - 1 - i) + 1];
        plan.column.re[i] = first * cosines[i] + second * sines[i];
        plan.column.im[i] = first * sines[i] - second * cosines[i];
    }
    const auto z = service.transform(service.host, plan.column);
    if (!z) return z.failure();
    const double scale = std::sqrt(2.0 / static_cast<double>(plan.length));
    const double* re = z->re;
    const double* im = z->im;
    for (std::size_t k = 0; k < pairs; ++k) {
        const std::size_t mirror = pairs - 1 - k;
        line[2 * k] = scale * (re[k] * cosines[k] - im[k] * sines[k]);
        line[2 * k + 1] = scale * (re[mirror] * sines[mirror] + im[mirror] * cosines[mirror]);
    }
    return {};
}

// The samples, followed by three times as many zeros; the coefficients stand at the odd places. The
// zeros are written each time, as the service may have used the column for its work.
Failure Dct4::transformOdd(const Plan& plan, double* line) {
    const auto length = static_cast<std::size_t>(plan.length);
    std::fill_n(std::copy_n(line, length, plan.column.re), 3 * length, 0.0);
    std::fill_n(plan.column.im, 4 * length, 0.0);
    const auto z = service.transform(service.host, plan.column);
    if (!z) return z.failure();
    const double scale = std::sqrt(2.0 / static_cast<double>(plan.length));
    for (std::size_t k = 0; k < length; ++k) {
        line[k] = scale * (plan.cosines[k] * z->re[2 * k + 1] - plan.sines[k] * z->im[2 * k + 1]);
    }
    return {};
}

}  // namespace undula
