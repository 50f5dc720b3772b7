#include <pybind11/numpy.h>

#include <algorithm>
#include <complex>
#include <utility>
#include <vector>

#include "conversion.h"

namespace undula {
namespace {

using Complex = std::complex<double>;

Reference number(Complex value) {
    return newReference([=] {
        return value.imag() == 0.0 ? PyFloat_FromDouble(value.real())
                                   : PyComplex_FromDoubles(value.real(), value.imag());
    });
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

// A fresh array of the shape of a matrix, by columns.
template <class Number>
py::array_t<Number, py::array::f_style> newArray(const Value& matrix) {
    return py::array_t<Number, py::array::f_style>(shapeOf(matrix));
}

Reference owned(py::object object) {
    return Reference(object.release().ptr());
}

// Not copied by NumPy, which would release the interpreter lock meanwhile.
Reference copyOf(const Value& matrix) {
    auto result = newArray<double>(matrix);
    double* out = result.mutable_data();
    for (int col = 0; col < matrix.cols(); ++col) {
        const auto numbers = matrix.re(col);
        out = numbers.empty() ? std::fill_n(out, matrix.rows(), 0.0) : std::ranges::copy(numbers, out).out;
    }
    return owned(std::move(result));
}

// An array around the memory of a matrix.
Reference viewOf(const Value& matrix) {
    constexpr py::ssize_t wordSize = sizeof(double);
    const aMatrix& raw = matrix.matrix();
    auto held = std::make_unique<Value>(matrix);
    const py::capsule owner(held.get(), [](void* value) { delete static_cast<Value*>(value); });
    static_cast<void>(held.release());
    std::vector<py::ssize_t> steps = {wordSize, wordSize * raw.stride};
    steps.resize(shapeOf(matrix).size());
    return owned(py::array_t<double>(shapeOf(matrix), steps, raw.re, owner));
}

Reference complexNumbers(const Value& matrix) {
    auto result = newArray<Complex>(matrix);
    Complex* out = result.mutable_data();
    for (int col = 0; col < matrix.cols(); ++col) {
        for (int row = 0; row < matrix.rows(); ++row) {
            *out++ = matrix.at(row, col);
        }
    }
    return owned(std::move(result));
}

Reference cell(const Value& matrix, int row, int col, const Lent* lent) {
    const Value nested = matrix.nested(row, col);
    return nested ? toPython(nested, lent) : number(matrix.at(row, col));
}

Reference listOf(const Value& matrix, const Lent* lent) {
    Reference result = newReference([&] { return PyList_New(matrix.rows()); });
    for (int row = 0; row < matrix.rows(); ++row) {
        PyList_SET_ITEM(result.get(), row, cell(matrix, row, 0, lent).release());
    }
    return result;
}

Reference objectArrayOf(const Value& matrix, const Lent* lent) {
    py::array result(py::dtype("O"), shapeOf(matrix));
    auto** place = static_cast<PyObject**>(result.mutable_data());
    for (int row = 0; row < matrix.rows(); ++row) {
        for (int col = 0; col < matrix.cols(); ++col) {
            const Reference before(std::exchange(*place++, cell(matrix, row, col, lent).release()));
        }
    }
    return owned(std::move(result));
}

Reference text(const std::string& letters) {
    const auto size = static_cast<py::ssize_t>(letters.size());
    return newReference([&] { return PyUnicode_DecodeLatin1(letters.data(), size, nullptr); });
}

Reference array(const Value& matrix, const Lent* lent) {
    if (matrix.anyNested()) {
        const Descent descent;
        return matrix.cols() == 1 ? listOf(matrix, lent) : objectArrayOf(matrix, lent);
    }
    if (hasImaginaryPart(matrix)) {
        return complexNumbers(matrix);
    }
    const bool mayBeShared = lent != nullptr && !lent->contains(matrix.raw());
    return mayBeShared && matrix.matrix().re != nullptr ? viewOf(matrix) : copyOf(matrix);
}

}  // namespace

Reference toPython(const Value& value, const Lent* lent) {
    if (value.isScalar()) {
        return number(value.scalar());
    }
    if (value.isString()) {
        return text(value.text());
    }
    if (value.isMatrix()) {
        return array(value, lent);
    }
    throw py::type_error("the pack has returned a value that Python has no object for");
}

}  // namespace undula
