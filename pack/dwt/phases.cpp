#include "dwt/phases.h"

#include <algorithm>
#include <cstring>

namespace undula {

void copyLine(const double* from, double* to, Index count) {
    std::memcpy(to, from, static_cast<std::size_t>(count) * sizeof(double));
}

void zeroLine(double* to, Index count) {
    std::fill_n(to, count, 0.0);
}

void Phases::read(const Lines& lines, Index n) const {
    if (lineWidth > 1 || lines.stride > 1) {
        for (Index p = 0; p < n; ++p) copyLine(lines.origin + p * lines.stride, at(p), lineWidth);
        return;
    }
    double* even = at(0);
    double* odd = at(1);
    const double* x = lines.origin;
    for (Index pair = 0; pair < floorHalf(n); ++pair) {
        even[pair] = x[2 * pair];
        odd[pair] = x[2 * pair + 1];
    }
    if (n & 1) even[floorHalf(n)] = x[n - 1];
}

void Phases::write(const Lines& lines, Index start, Index count) const {
    if (lineWidth > 1 || lines.stride > 1) {
        for (Index p = start; p < start + count; ++p)
            copyLine(at(p), lines.origin + p * lines.stride, lineWidth);
        return;
    }
    const double* even = at(start);
    const double* odd = at(start + 1);
    double* x = lines.origin + start;
    for (Index pair = 0; pair < floorHalf(count); ++pair) {
        x[2 * pair] = even[pair];
        x[2 * pair + 1] = odd[pair];
    }
    if (count & 1) x[count - 1] = even[floorHalf(count)];
}

}  // namespace undula
