#include "frame/matrices.h"

#include <algorithm>

#include "frame/floating_point.h"
#include "frame/host_services.h"

namespace undula {

namespace {

const double* columnOf(const double* elements, const aMatrix* matrix, int col) {
    return elements + static_cast<std::ptrdiff_t>(matrix->stride) * col;
}

bool isZero(double x) {
    return x == 0.0;
}

}  // namespace

bool hasImaginaryPart(const aMatrix* matrix) {
    if (matrix->im == nullptr) return false;
    for (int col = 0; col < matrix->cols; ++col) {
        const double* column = columnOf(matrix->im, matrix, col);
        if (!std::all_of(column, column + matrix->rows, isZero)) return true;
    }
    return false;
}

bool holdsNested(EfiCallContext* context, const aMatrix* matrix) {
    const HostServiceScope scope;
    return efiFindNested(context, matrix, 0) >= 0;
}

bool isRealArray(EfiCallContext* context, const Anyval* value) {
    if (tagOf(value) != TagArray) return false;
    const auto* matrix = static_cast<const aMatrix*>(value);
    return !hasImaginaryPart(matrix) && !holdsNested(context, matrix);
}

double element(const aMatrix* matrix, int row, int col) {
    return matrix->re == nullptr ? 0.0 : columnOf(matrix->re, matrix, col)[row];
}

void copyElements(const aMatrix* matrix, double* out) {
    if (matrix->re == nullptr) {
        std::fill_n(out, sizeOf(matrix), 0.0);
        return;
    }
    for (int col = 0; col < matrix->cols; ++col) {
        out = std::copy_n(columnOf(matrix->re, matrix, col), matrix->rows, out);
    }
}

Array<double> copyOfElements(const aMatrix* matrix) {
    auto copy =
        newElements(static_cast<std::uint64_t>(matrix->rows), static_cast<std::uint64_t>(matrix->cols));
    if (copy) copyElements(matrix, copy.data());
    return copy;
}

}  // namespace undula
