#include <pybind11/complex.h>
#include <pybind11/numpy.h>

#include <complex>
#include <cstdint>
#include <limits>
#include <new>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "conversion.h"
#include "costs.h"
#include "interpreter_lock.h"

namespace undula {
namespace {

constexpr py::ssize_t wordSize = sizeof(double);

struct Release {
    void operator()(double* block) const { ::operator delete(block); }
};
// Numbers in memory that a matrix of the host can adopt.
using Block = std::unique_ptr<double, Release>;

Block makeBlock(std::size_t count) {
    return Block(static_cast<double*>(::operator new(count * sizeof(double))));
}

// Makes objects that contain each other end in a RecursionError, not in a stack overflow.
class Descent {
 public:
    Descent() {
        if (Py_EnterRecursiveCall(" while reading an argument") != 0) {
            throw py::error_already_set();
        }
    }
    ~Descent() { Py_LeaveRecursiveCall(); }
    Descent(const Descent&) = delete;
    Descent& operator=(const Descent&) = delete;
};

std::string typeName(py::handle object) {
    return Py_TYPE(object.ptr())->tp_name;
}

// An array of no dimension counts as a number.
bool isArray(py::handle object) {
    return py::isinstance<py::array>(object) && py::reinterpret_borrow<py::array>(object).ndim() > 0;
}

// A sequence other than text and arrays.
bool isSequence(py::handle object) {
    PyObject* const raw = object.ptr();
    return PySequence_Check(raw) != 0 && !PyUnicode_Check(raw) && !PyBytes_Check(raw) &&
           !PyByteArray_Check(raw) && !py::hasattr(object, "__array__");
}

py::tuple itemsOf(py::handle sequence) {
    return newReference([=] { return PySequence_Tuple(sequence.ptr()); });
}

bool isNumberKind(char kind) {
    return std::string_view("biufc").find(kind) != std::string_view::npos;
}

// Whether a sequence contains an array at any depth: then it is a table, else rows or numbers.
bool holdsArray(const py::tuple& items) {
    const Descent descent;
    for (const py::handle item : items) {
        if (isArray(item) || (isSequence(item) && holdsArray(itemsOf(item)))) {
            return true;
        }
    }
    return false;
}

// Reads one argument.
class Reader {
 public:
    Reader(const std::string& place, Lent* lent) : place_(place), lent_(lent) {}

    Value value(py::handle object) const {
        const Descent descent;
        if (const auto found = number(object)) {
            return *found;
        }
        if (PyUnicode_Check(object.ptr())) {
            return text(object);
        }
        if (isArray(object)) {
            return array(py::reinterpret_borrow<py::array>(object));
        }
        if (isSequence(object)) {
            return sequence(itemsOf(object));
        }
        if (py::hasattr(object, "__array__")) {
            const py::object asarray = py::module_::import("numpy").attr("asarray");
            return array(newReference([&] { return PyObject_CallOneArg(asarray.ptr(), object.ptr()); }));
        }
        if (const auto cost = costFunction(object)) {
            return *cost;
        }
        if (PyCallable_Check(object.ptr()) != 0) {
            return userFunction(object, place_);
        }
        if (py::isinstance<NumberFunction>(object)) {
            return numberFunction(object, place_);
        }
        refuse("cannot be of type " + typeName(object));
    }

 private:
    [[noreturn]] void refuse(const std::string& reason) const { throw py::type_error(place_ + " " + reason); }

    // The value of a Python or NumPy number; none for other objects.
    std::optional<std::complex<double>> number(py::handle object) const {
        PyObject* const raw = object.ptr();
        if (PyFloat_Check(raw)) {
            return PyFloat_AS_DOUBLE(raw);
        }
        if (PyLong_Check(raw)) {
            return integer(raw);
        }
        if (PyComplex_Check(raw) || isNumpyNumber(object)) {
            const Py_complex parts = PyComplex_AsCComplex(raw);
            if (PyErr_Occurred() != nullptr) {
                throw py::error_already_set();
            }
            return std::complex<double>(parts.real, parts.imag);
        }
        if (py::isinstance<py::array>(object) && !isArray(object)) {
            const Descent descent;
            return number(object.attr("item")());
        }
        return std::nullopt;
    }

    double integer(PyObject* raw) const {
        const double value = PyLong_AsDouble(raw);
        if (PyErr_Occurred() != nullptr) {
            PyErr_Clear();
            throw py::value_error(place_ + " holds an int that is too large");
        }
        return value;
    }

    static bool isNumpyNumber(py::handle object) {
        static const py::handle generic = py::object(py::module_::import("numpy").attr("generic")).release();
        return py::isinstance(object, generic) &&
               isNumberKind(object.attr("dtype").attr("kind").cast<char>());
    }

    Value text(py::handle object) const {
        const auto bytes = py::reinterpret_steal<py::bytes>(PyUnicode_AsLatin1String(object.ptr()));
        if (!bytes) {
            PyErr_Clear();
            throw py::value_error(place_ + " has characters beyond Latin-1");
        }
        const std::string letters = bytes;
        if (letters.find('\0') != std::string::npos) {
            throw py::value_error(place_ + " has a character of code 0");
        }
        return Value(letters);
    }

    Value array(const py::array& source) const {
        const char kind = source.dtype().kind();
        if (kind != 'O' && !isNumberKind(kind)) {
            refuse("cannot be an array of " + py::str(source.dtype()).cast<std::string>());
        }
        if (source.ndim() < 1 || source.ndim() > 2) {
            refuse("cannot be an array of " + std::to_string(source.ndim()) + " dimensions");
        }
        if (kind == 'O') {
            return objects(source);
        }
        if (kind == 'c') {
            Block re = copy(source.attr("real"));
            Block im = copy(source.attr("imag"));
            return adopt(source.shape(0), colsOf(source), std::move(re), std::move(im));
        }
        if (lent_ != nullptr && isBorrowable(source)) {
            return borrow(source);
        }
        return adopt(source.shape(0), colsOf(source), copy(source));
    }

    static py::ssize_t colsOf(const py::array& source) { return source.ndim() == 2 ? source.shape(1) : 1; }

    // The sides of a matrix, when the host can have one of that size.
    std::pair<int, int> sides(py::ssize_t rows, py::ssize_t cols) const {
        constexpr py::ssize_t longest = std::numeric_limits<std::int32_t>::max();
        constexpr py::ssize_t largest = std::numeric_limits<std::uint32_t>::max() / wordSize;
        if (rows > longest || cols > longest || (rows > 0 && cols > largest / rows)) {
            throw py::value_error(place_ + " is too large: 4 GiB or more, or a side of 2^31");
        }
        return {static_cast<int>(rows), static_cast<int>(cols)};
    }

    Value adopt(py::ssize_t rows, py::ssize_t cols, Block re, Block im = nullptr) const {
        const auto [height, width] = sides(rows, cols);
        Value result = Value::adopt(height, width, re.get(), im.get());
        static_cast<void>(re.release());
        static_cast<void>(im.release());
        return result;
    }

    // The numbers by columns, whatever the dtype and the order of the source.
    Block copy(const py::array& source) const {
        sides(source.shape(0), colsOf(source));
        Block block = makeBlock(static_cast<std::size_t>(source.size()));
        const std::vector<py::ssize_t> shape(source.shape(), source.shape() + source.ndim());
        const std::vector<py::ssize_t> steps{wordSize, wordSize * source.shape(0)};
        const py::capsule owner(block.get());  // keeps the array from making a copy of the block
        py::array_t<double> target(shape, {steps.begin(), steps.begin() + source.ndim()}, block.get(), owner);
        if (askingForLock([&] { return PyObject_SetItem(target.ptr(), Py_Ellipsis, source.ptr()); }) != 0) {
            throw py::error_already_set();
        }
        return block;
    }

    // Whether the host can read the memory of an array as a matrix: doubles, with columns a whole
    // number of them apart.
    static bool isBorrowable(const py::array& source) {
        if (!py::isinstance<py::array_t<double>>(source) ||
            (source.flags() & py::detail::npy_api::NPY_ARRAY_ALIGNED_) == 0) {
            return false;
        }
        const py::ssize_t rows = source.shape(0);
        const py::ssize_t step = strideOf(source);
        return (rows <= 1 || source.strides(0) == wordSize) && step % wordSize == 0 &&
               step / wordSize >= rows && step / wordSize <= std::numeric_limits<std::int32_t>::max();
    }

    // Bytes from column to column; NumPy does not define it for a single column.
    static py::ssize_t strideOf(const py::array& source) {
        return colsOf(source) > 1 ? source.strides(1) : wordSize * source.shape(0);
    }

    Value borrow(const py::array& source) const {
        const auto [rows, cols] = sides(source.shape(0), colsOf(source));
        const auto stride = static_cast<int>(strideOf(source) / wordSize);
        const auto* numbers = static_cast<const double*>(source.data());
        Value result = Value::borrow(rows, cols, stride, numbers, nullptr, keep(source));
        lent_->insert(result.raw());
        return result;
    }

    // An object array: its cells are numbers or arrays.
    Value objects(const py::array& source) const {
        const py::list byColumns = source.attr("ravel")("F").attr("tolist")();
        return cells(source.shape(0), colsOf(source), py::tuple(byColumns));
    }

    Value sequence(const py::tuple& items) const {
        if (holdsArray(items)) {
            return cells(py::ssize_t(items.size()), 1, items);
        }
        if (!items.empty() && isSequence(items[0])) {
            return rowsOf(items);
        }
        return numbers(py::ssize_t(items.size()), 1, items);
    }

    // A sequence of equally long sequences of numbers.
    Value rowsOf(const py::tuple& items) const {
        std::vector<py::tuple> rows;
        for (const py::handle item : items) {
            if (!isSequence(item)) {
                refuse("holds a " + typeName(item) + " among its rows");
            }
            rows.push_back(itemsOf(item));
            if (rows.back().size() != rows.front().size()) {
                refuse("has rows of different lengths (a table is a list of arrays)");
            }
        }
        const std::size_t cols = rows.front().size();
        py::tuple byColumns(rows.size() * cols);
        for (std::size_t col = 0; col < cols; ++col) {
            for (std::size_t row = 0; row < rows.size(); ++row) {
                byColumns[col * rows.size() + row] = rows[row][col];
            }
        }
        return numbers(py::ssize_t(rows.size()), py::ssize_t(cols), byColumns);
    }

    // A matrix whose cells, listed by columns, are all numbers.
    Value numbers(py::ssize_t rows, py::ssize_t cols, const py::tuple& items) const {
        for (const py::handle item : items) {
            if (!number(item)) {
                refuse("holds a " + typeName(item) + " in place of a number");
            }
        }
        return cells(rows, cols, items);
    }

    // A matrix whose cells, listed by columns, are numbers or arrays.
    Value cells(py::ssize_t rows, py::ssize_t cols, const py::tuple& items) const {
        const auto [height, width] = sides(rows, cols);
        Block re = makeBlock(items.size());
        Block im = makeBlock(items.size());
        std::vector<std::size_t> nested;
        bool isReal = true;
        for (std::size_t place = 0; place < items.size(); ++place) {
            const auto found = number(items[place]);
            const auto plain = found.value_or(0.0);
            re.get()[place] = plain.real();
            im.get()[place] = plain.imag();
            isReal = isReal && plain.imag() == 0.0;
            if (!found) {
                nested.push_back(place);
            }
        }
        Value result = adopt(rows, cols, std::move(re), isReal ? nullptr : std::move(im));
        for (const std::size_t place : nested) {
            const auto row = static_cast<int>(place % static_cast<std::size_t>(height));
            const auto col = static_cast<int>(place / static_cast<std::size_t>(height));
            result.nest(row, col, nestedValue(items[place]));
        }
        return result;
    }

    Value nestedValue(py::handle object) const {
        if (!isArray(object) && !isSequence(object)) {
            refuse("holds a " + typeName(object) + " in place of a number or an array");
        }
        return value(object);
    }

    const std::string& place_;
    Lent* const lent_;
};

}  // namespace

Value toHost(py::handle object, const std::string& place, Lent* lent) {
    return Reader(place, lent).value(object);
}

}  // namespace undula
