#include "filters/cascade.h"

#include <algorithm>

namespace undula {

namespace {

constexpr int stages = 5;

// Replaces the sequence by itself, upsampled by two and convolved with the filter. Works from the
// far end, where no value is written that a later one needs: output i reads inputs up to i / 2.
std::int32_t refine(double* sequence, std::int32_t length, const double* filter, std::int32_t taps) {
    const std::int32_t refined = 2 * length + taps - 2;
    for (std::int32_t i = refined - 1; i >= 0; --i) {
        const std::int32_t first = std::max(0, (i - taps + 2) / 2);
        const std::int32_t last = std::min(length - 1, i / 2);
        double sum = 0.0;
        for (std::int32_t m = first; m <= last; ++m) sum += sequence[m] * filter[i - 2 * m];
        sequence[i] = sum;
    }
    return refined;
}

}  // namespace

void buildCascade(const double* filter, std::int32_t taps, double* table) {
    std::copy_n(filter, taps, table);
    std::int32_t length = taps;
    for (int stage = 1; stage < stages; ++stage) length = refine(table, length, filter, taps);
}

}  // namespace undula
