#include <octave/Cell.h>
#include <octave/error.h>

#include <algorithm>
#include <utility>

#include "conversion.h"

namespace undula {
namespace {

dim_vector sizeOf(const Value& matrix, bool asRows) {
    if (asRows && matrix.cols() == 1) return {1, matrix.rows()};
    return {matrix.rows(), matrix.cols()};
}

bool hasImaginaryPart(const Value& matrix) {
    for (int col = 0; col < matrix.cols(); ++col) {
        if (std::ranges::any_of(matrix.im(col), [](double part) { return part != 0.0; })) return true;
    }
    return false;
}

octave_value complexNumbers(const Value& matrix, const dim_vector& size) {
    ComplexNDArray array(size);
    octave_idx_type place = 0;
    for (int col = 0; col < matrix.cols(); ++col) {
        for (int row = 0; row < matrix.rows(); ++row) array.xelem(place++) = matrix.at(row, col);
    }
    return array;
}

octave_value copyOf(const Value& matrix, const dim_vector& size) {
    NDArray array(size);
    double* out = array.fortran_vec();
    for (int col = 0; col < matrix.cols(); ++col) {
        const auto numbers = matrix.re(col);
        out = numbers.empty() ? std::fill_n(out, matrix.rows(), 0.0) : std::ranges::copy(numbers, out).out;
    }
    return array;
}

octave_value realNumbers(Value&& matrix, const dim_vector& size) {
    if (double* const numbers = matrix.release()) return NDArray(Array<double>(numbers, size));
    return copyOf(matrix, size);
}

octave_value cellsOf(const Value& matrix, bool asRows) {
    Cell cells(matrix.rows(), matrix.cols());
    for (int col = 0; col < matrix.cols(); ++col) {
        for (int row = 0; row < matrix.rows(); ++row) {
            Value nested = matrix.nested(row, col);
            if (!nested) nested = matrix.at(row, col);
            cells(row, col) = toOctave(std::move(nested), asRows);
        }
    }
    return cells;
}

octave_value numberOf(std::complex<double> number) {
    return number.imag() == 0.0 ? octave_value(number.real()) : octave_value(number);
}

octave_value arrayOf(Value&& matrix, bool asRows) {
    if (matrix.anyNested()) return cellsOf(matrix, asRows);
    const dim_vector size = sizeOf(matrix, asRows);
    return hasImaginaryPart(matrix) ? complexNumbers(matrix, size) : realNumbers(std::move(matrix), size);
}

}  // namespace

octave_value toOctave(Value&& value, bool asRows) {
    if (value.isScalar()) return numberOf(value.scalar());
    if (value.isString()) return value.text();
    if (value.isMatrix()) return arrayOf(std::move(value), asRows);
    error_with_id("Undula:no-such-value", "the pack has returned what Octave has no value for");
}

}  // namespace undula
