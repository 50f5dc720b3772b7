#include "arrays.h"

#include <vector>

namespace undula {
namespace {

using Api = py::detail::npy_api;

constexpr int ensureCopy = 0x0020;  // a flag of NumPy's that pybind11 has no name for
constexpr int freshColumns =
    Api::NPY_ARRAY_F_CONTIGUOUS_ | Api::NPY_ARRAY_ALIGNED_ | Api::NPY_ARRAY_FORCECAST_ | ensureCopy;
constexpr int anyType = -1;

// They live as long as the process.
const Api* numpy = nullptr;
PyTypeObject* scalarType = nullptr;
PyTypeObject* maskedType = nullptr;

PyTypeObject* typeIn(const char* module, const char* name) {
    const py::module_ imported = py::module_::import(module);
    return reinterpret_cast<PyTypeObject*>(attribute(imported, name).release());
}

bool isOf(py::handle object, PyTypeObject* type) {
    return PyObject_TypeCheck(object.ptr(), type) != 0;
}

Reference arrayFrom(py::handle object, int flags, int type = anyType) {
    return newReference([=] {
        PyObject* const wanted = type == anyType ? nullptr : numpy->PyArray_DescrFromType_(type);
        return numpy->PyArray_FromAny_(object.ptr(), wanted, 0, 0, flags, nullptr);
    });
}

}  // namespace

void prepareArrays() {
    numpy = &Api::get();
    scalarType = typeIn("numpy", "generic");
    maskedType = typeIn("numpy.ma", "MaskedArray");
}

bool isArray(py::handle object) {
    return isOf(object, numpy->PyArray_Type_) && viewOf(object).ndim() > 0;
}

bool isNumPyScalar(py::handle object) {
    return isOf(object, scalarType) || (isOf(object, numpy->PyArray_Type_) && viewOf(object).ndim() == 0);
}

// Text and lists are no arrays to the pack; neither is a class, though its objects may be.
bool isArrayLike(py::handle object) {
    PyObject* const raw = object.ptr();
    if (PyList_CheckExact(raw) || PyTuple_CheckExact(raw) || PyUnicode_Check(raw) || PyBytes_Check(raw) ||
        PyType_Check(raw)) {
        return false;
    }
    return isNumPyScalar(object) || isArray(object) || PyMemoryView_Check(raw) ||
           attributeIfAny(object, "__array__");
}

bool isMasked(py::handle object) {
    return isOf(object, maskedType);
}

Reference arrayOf(py::handle object) {
    return arrayFrom(object, 0);
}

Reference plainArray(py::handle object) {
    return arrayFrom(object, Api::NPY_ARRAY_ENSUREARRAY_);
}

void copyNumbers(py::handle plain, double* out) {
    const py::array source = viewOf(plain);
    const std::vector<py::ssize_t> shape(source.shape(), source.shape() + source.ndim());
    using Columns = py::array_t<double, py::array::f_style>;
    const Columns target(shape, out, py::none());  // an owner, be it none, keeps the memory from being copied
    if (askingForLock([&] { return numpy->PyArray_CopyInto_(target.ptr(), plain.ptr()); }) != 0) {
        throwPending();
    }
}

Reference objectsOf(py::handle plain) {
    return arrayFrom(plain, freshColumns);
}

Objects objectsIn(py::handle columns) {
    const py::array array = viewOf(columns);
    return {static_cast<PyObject* const*>(array.data()), static_cast<std::size_t>(array.size())};
}

std::complex<double> numberOf(py::handle plain) {
    const Reference number = arrayFrom(plain, freshColumns, Api::NPY_CDOUBLE_);
    return *static_cast<const std::complex<double>*>(viewOf(number).data());
}

}  // namespace undula
