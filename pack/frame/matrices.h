// Reading host matrices.
#pragma once

#include <cstddef>

#include "efi/host.h"
#include "frame/memory.h"

namespace undula {

// Whether the value is an array of numbers without imaginary parts: every element of `im` in the
// rows x cols block compares equal to 0. A cell that holds a nested value is no number.
bool isRealArray(EfiCallContext* context, const aMatrix* matrix);

// The two halves of that test, of an array.
bool hasImaginaryPart(const aMatrix* matrix);
bool holdsNested(EfiCallContext* context, const aMatrix* matrix);

// The same for an array of exactly one column.
bool isRealVector(EfiCallContext* context, const aMatrix* matrix);

// The real part of element (row, col).
double element(const aMatrix* matrix, int row, int col);

// Copies the real parts, column after column without gaps.
void copyElements(const aMatrix* matrix, double* out);

// A copy of the real parts, ready to become a matrix of the same shape; false when there is no
// memory.
Array<double> copyOfElements(const aMatrix* matrix);

inline std::size_t sizeOf(const aMatrix* matrix) {
    return static_cast<std::size_t>(matrix->rows) * static_cast<std::size_t>(matrix->cols);
}

}  // namespace undula
