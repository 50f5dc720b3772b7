// NumPy arrays, as the conversions see them.
#pragma once

#include <pybind11/numpy.h>

#include <complex>
#include <string_view>

#include "python_calls.h"

namespace undula {

// Finds NumPy's types. Called while the module is imported: an import at any later time may have to wait
// for a thread that waits for this one.
void prepareArrays();

// An array of one dimension or more.
bool isArray(py::handle object);
// A number, date or text of NumPy's, or an array of no dimension.
bool isNumPyScalar(py::handle object);
// Whether NumPy makes an array of the object otherwise than by reading a sequence.
bool isArrayLike(py::handle object);
bool isMasked(py::handle object);

// The array that an object is or becomes, of any class.
Reference arrayOf(py::handle object);
// np.asarray: an array of NumPy's own class. One of a derived class may lie about its shape and numbers.
Reference plainArray(py::handle object);

// What a plain array says of itself. It owns no more than its caller does.
inline py::array viewOf(py::handle plain) {
    return py::reinterpret_borrow<py::array>(plain);
}
inline char kindOf(py::handle plain) {
    return viewOf(plain).dtype().kind();
}
inline bool isNumberKind(char kind) {
    return std::string_view("biufc").find(kind) != std::string_view::npos;
}

// Writes the numbers of a plain array by columns.
void copyNumbers(py::handle plain, double* out);
// A fresh array with the objects of a plain one by columns.
Reference objectsOf(py::handle plain);
// What such an array, or one of no dimension, holds.
Objects objectsIn(py::handle columns);
// The number in a plain array of no dimension.
std::complex<double> numberOf(py::handle plain);

}  // namespace undula
