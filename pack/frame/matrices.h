// Reading host matrices.
#pragma once

#include <cstddef>
#include <cstdint>

#include "efi/host.h"
#include "frame/memory.h"

namespace undula {

// Whether the value is an array without imaginary parts and without nested values.
bool isRealArray(EfiCallContext* context, const Anyval* value);

// Whether an element of `im` in the rows x cols block differs from 0.
bool hasImaginaryPart(const aMatrix* matrix);
// Whether a cell holds a nested value, not a number.
bool holdsNested(EfiCallContext* context, const aMatrix* matrix);

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

inline bool isEmpty(const aMatrix* matrix) {
    return matrix->rows == 0 || matrix->cols == 0;
}

// Whether both sides of the data are as asked. An array of one column is a signal, which has one side.
template <class Question>
bool holdsForSides(const aMatrix* data, Question question) {
    return question(static_cast<std::uint64_t>(data->rows)) &&
           (data->cols == 1 || question(static_cast<std::uint64_t>(data->cols)));
}

}  // namespace undula
