#include <pybind11/complex.h>
#include <pybind11/numpy.h>

#include <algorithm>
#include <complex>

#include "conversion.h"

namespace undula {
namespace {

constexpr py::ssize_t wordSize = sizeof(double);

py::object number(std::complex<double> value) {
    if (value.imag() == 0.0) {
        return py::float_(value.real());
    }
    return py::cast(value);
}

bool hasImaginaryPart(const Value& matrix) {
    for (int col = 0; col < matrix.cols(); ++col) {
        const auto parts = matrix.im(col);
        if (std::any_of(parts.begin(), parts.end(), [](double part) { return part != 0.0; })) {
            return true;
        }
    }
    return false;
}

std::vector<py::ssize_t> shapeOf(const Value& matrix) {
    if (matrix.cols() == 1) {
        return {matrix.rows()};
    }
    return {matrix.rows(), matrix.cols()};
}

// Distances in bytes between the elements of a matrix with this stride, for each axis of shapeOf.
std::vector<py::ssize_t> stepsOf(const Value& matrix, py::ssize_t elementSize, py::ssize_t stride) {
    if (matrix.cols() == 1) {
        return {elementSize};
    }
    return {elementSize, elementSize * stride};
}

// Not copied by NumPy, which would release the interpreter lock meanwhile.
py::array copyOf(const Value& matrix) {
    py::array_t<double> result(shapeOf(matrix), stepsOf(matrix, wordSize, matrix.rows()));
    double* out = result.mutable_data();
    for (int col = 0; col < matrix.cols(); ++col) {
        out = std::ranges::copy(matrix.re(col), out).out;
    }
    return result;
}

py::array zeros(const Value& matrix) {
    py::array_t<double> result(shapeOf(matrix), stepsOf(matrix, wordSize, matrix.rows()));
    std::fill_n(result.mutable_data(), result.size(), 0.0);
    return result;
}

py::array realNumbers(const Value& matrix, const Lent* lent) {
    const aMatrix& raw = matrix.matrix();
    if (raw.re == nullptr) {
        return zeros(matrix);
    }
    if (lent == nullptr || lent->contains(matrix.raw())) {
        return copyOf(matrix);
    }
    auto held = std::make_unique<Value>(matrix);
    const py::capsule owner(held.get(), [](void* value) { delete static_cast<Value*>(value); });
    static_cast<void>(held.release());
    return py::array_t<double>(shapeOf(matrix), stepsOf(matrix, wordSize, raw.stride), raw.re, owner);
}

py::array complexNumbers(const Value& matrix) {
    using Complex = std::complex<double>;
    py::array_t<Complex> result(shapeOf(matrix), stepsOf(matrix, sizeof(Complex), matrix.rows()));
    Complex* out = result.mutable_data();
    for (int col = 0; col < matrix.cols(); ++col) {
        const auto re = matrix.re(col);
        const auto im = matrix.im(col);
        for (std::size_t row = 0; row < static_cast<std::size_t>(matrix.rows()); ++row) {
            *out++ = Complex(re.empty() ? 0.0 : re[row], im.empty() ? 0.0 : im[row]);
        }
    }
    return result;
}

py::object cell(const Value& matrix, int row, int col, const Lent* lent) {
    const Value nested = matrix.nested(row, col);
    return nested ? toPython(nested, lent) : number(matrix.at(row, col));
}

py::object cells(const Value& matrix, const Lent* lent) {
    if (matrix.cols() == 1) {
        py::list result(static_cast<std::size_t>(matrix.rows()));
        for (int row = 0; row < matrix.rows(); ++row) {
            result[static_cast<std::size_t>(row)] = cell(matrix, row, 0, lent);
        }
        return result;
    }
    py::array result(py::dtype("O"), shapeOf(matrix));
    for (int row = 0; row < matrix.rows(); ++row) {
        for (int col = 0; col < matrix.cols(); ++col) {
            result[py::make_tuple(row, col)] = cell(matrix, row, col, lent);
        }
    }
    return result;
}

}  // namespace

py::object toPython(const Value& value, const Lent* lent) {
    if (value.isScalar()) {
        return number(value.scalar());
    }
    if (value.isString()) {
        const std::string text = value.text();
        const auto size = static_cast<py::ssize_t>(text.size());
        return py::reinterpret_steal<py::object>(PyUnicode_DecodeLatin1(text.data(), size, nullptr));
    }
    if (!value.isMatrix()) {
        throw py::type_error("the pack has returned a value that Python has no object for");
    }
    if (value.anyNested()) {
        return cells(value, lent);
    }
    return hasImaginaryPart(value) ? complexNumbers(value) : realNumbers(value, lent);
}

}  // namespace undula
