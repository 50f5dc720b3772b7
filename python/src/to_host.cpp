#include <algorithm>
#include <cstdint>
#include <iterator>
#include <limits>
#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

#include "arrays.h"
#include "conversion.h"
#include "costs.h"
#include "stack.h"

namespace undula {
namespace {

constexpr py::ssize_t wordSize = sizeof(double);

std::string typeName(py::handle object) {
    return Py_TYPE(object.ptr())->tp_name;
}

// A sequence, of numbers or of whatever else, but not text.
bool isSequence(py::handle object) {
    PyObject* const raw = object.ptr();
    return PySequence_Check(raw) != 0 && !PyUnicode_Check(raw) && !PyBytes_Check(raw) &&
           !PyByteArray_Check(raw);
}

// A list or an array in an argument. It is read once, wherever else in the argument it stands.
struct Container {
    Reference object;  // kept alive, so that no other object has its address
    Reference items;   // of a sequence, as a tuple
    bool holdsArray = false;
    Value value;  // empty until it is asked for
};

// Reads one argument.
class Reader {
 public:
    Reader(const Place& place, Lent* lent) : place_(place), lent_(lent) {}

    Value value(py::handle object) {
        PyObject* const raw = object.ptr();
        if (const auto found = number(object)) {
            return *found;
        }
        if (PyUnicode_Check(raw)) {
            return text(raw);
        }
        if (isArrayLike(object)) {
            return array(plain(object));
        }
        if (isSequence(object)) {
            return nested(object);
        }
        if (const auto cost = costFunction(object)) {
            return *cost;
        }
        if (py::isinstance<UserFunction>(object)) {
            return wrappedFunction(object, place_);
        }
        if (PyCallable_Check(raw) != 0) {
            return userFunction(object, place_);
        }
        refuse("cannot be of type " + typeName(object));
    }

 private:
    [[noreturn]] void refuse(const std::string& reason) const {
        throw py::type_error(place_.text() + " " + reason);
    }
    [[noreturn]] void refuseValue(const std::string& reason) const {
        throw py::value_error(place_.text() + " " + reason);
    }

    // The value of a Python or NumPy number; none for other objects.
    std::optional<std::complex<double>> number(py::handle object) const {
        PyObject* const raw = object.ptr();
        if (PyFloat_Check(raw)) {
            return PyFloat_AS_DOUBLE(raw);
        }
        if (PyLong_Check(raw)) {
            return integer(raw);
        }
        if (PyComplex_Check(raw)) {
            return std::complex(PyComplex_RealAsDouble(raw), PyComplex_ImagAsDouble(raw));
        }
        return isNumPyScalar(object) ? numberIn(plain(object)) : std::nullopt;
    }

    // The number in an array of no dimension; none where it holds something else.
    std::optional<std::complex<double>> numberIn(const Reference& array) const {
        if (kindOf(array) == 'O') {
            const Descent descent;
            return number(Reference::to(objectsIn(array)[0]));
        }
        return isNumberKind(kindOf(array)) ? std::optional(numberOf(array)) : std::nullopt;
    }

    double integer(PyObject* raw) const {
        const double value = PyLong_AsDouble(raw);
        if (PyErr_Occurred() != nullptr) {
            PyErr_Clear();
            refuseValue("holds an int that is too large");
        }
        return value;
    }

    Value text(PyObject* raw) const {
        if (PyUnicode_READY(raw) != 0) {
            throwPending();
        }
        if (PyUnicode_KIND(raw) != PyUnicode_1BYTE_KIND) {
            refuseValue("has characters beyond Latin-1");
        }
        const auto* bytes = reinterpret_cast<const char*>(PyUnicode_1BYTE_DATA(raw));
        const std::string_view letters(bytes, static_cast<std::size_t>(PyUnicode_GET_LENGTH(raw)));
        if (letters.find('\0') != std::string_view::npos) {
            refuseValue("has a character of code 0");
        }
        return letters;
    }

    // Its array of NumPy's own class, from which alone size and numbers are read.
    Reference plain(py::handle object) const {
        const Reference array = arrayOf(object);
        if (isMasked(array)) {
            refuse(
                "cannot be a masked array, of which the masked numbers would count too: "
                "use its method filled or compressed");
        }
        return plainArray(array);
    }

    Value array(const Reference& plain) {
        const py::array source = viewOf(plain);
        const char kind = kindOf(plain);
        if (source.ndim() == 0) {
            if (const auto found = numberIn(plain)) {
                return *found;
            }
        }
        if (kind != 'O' && !isNumberKind(kind)) {
            refuse("cannot be an array of " + textOf(source.dtype()));
        }
        if (source.ndim() < 1 || source.ndim() > 2) {
            refuse("cannot be an array of " + std::to_string(source.ndim()) +
                   " dimensions; transforms go along the axes that axis= names");
        }
        requireSize(source.shape(0), colsOf(source));
        if (kind == 'O') {
            const Reference objects = objectsOf(plain);
            return cells(source.shape(0), colsOf(source), objectsIn(objects), true);
        }
        if (lent_ != nullptr && isBorrowable(source)) {
            return borrow(source);
        }
        return copy(plain);
    }

    static Value copy(const Reference& plain) {
        const py::array source = viewOf(plain);
        const bool isComplex = kindOf(plain) == 'c';
        Value result =
            Value::blank(static_cast<int>(source.shape(0)), static_cast<int>(colsOf(source)), isComplex);
        if (isComplex) {
            copyNumbers(attribute(plain, "real"), result.matrix().re);
            copyNumbers(attribute(plain, "imag"), result.matrix().im);
        } else {
            copyNumbers(plain, result.matrix().re);
        }
        return result;
    }

    static py::ssize_t colsOf(const py::array& source) { return source.ndim() == 2 ? source.shape(1) : 1; }

    void requireSize(py::ssize_t rows, py::ssize_t cols) const {
        if (!Value::isPossible(rows, cols)) {
            refuseValue("is too large: 4 GiB or more, or a side of 2^31");
        }
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
        const auto rows = static_cast<int>(source.shape(0));
        const auto cols = static_cast<int>(colsOf(source));
        const auto stride = static_cast<int>(strideOf(source) / wordSize);
        const auto* numbers = static_cast<const double*>(source.data());
        Value result = Value::borrow(rows, cols, stride, numbers, nullptr, keep(source));
        lent_->insert(result.raw());
        return result;
    }

    Container& container(py::handle object) {
        const auto [place, isNew] = containers_.try_emplace(object.ptr());
        Container& found = place->second;
        if (isNew) {
            const Descent descent;
            found.object = Reference::to(object);
            if (!isArrayLike(object)) {
                found.items = tupleOf(object);
                found.holdsArray = holdsArray(itemsOf(found.items));
            }
        }
        return found;
    }

    // Whether there is an array at any depth: then a sequence is a table, else rows or numbers.
    bool holdsArray(Objects items) {
        return std::ranges::any_of(items, [this](PyObject* item) {
            if (PyFloat_Check(item) || PyLong_Check(item) || isNumPyScalar(item)) {
                return false;
            }
            return isArrayLike(item) || (isSequence(item) && container(item).holdsArray);
        });
    }

    // The value of a list or an array in an argument.
    Value nested(py::handle object) {
        const Descent descent;
        Container& found = container(object);
        if (!found.value) {
            found.value = found.items ? sequence(found) : array(plain(object));
        }
        return found.value;
    }

    Value sequence(const Container& list) {
        const Objects items = itemsOf(list.items);
        if (!list.holdsArray && !items.empty() && isSequence(items[0])) {
            return rowsOf(items);
        }
        return cells(std::ssize(items), 1, items, list.holdsArray);
    }

    // Equally long sequences of numbers.
    Value rowsOf(Objects rows) {
        std::vector<Objects> numbers;
        for (PyObject* const row : rows) {
            if (!isSequence(row)) {
                refuse("holds a " + typeName(row) + " among its rows");
            }
            numbers.push_back(itemsOf(container(row).items));
            if (numbers.back().size() != numbers.front().size()) {
                refuse("has rows of different lengths (a table is a list of arrays)");
            }
        }
        std::vector<PyObject*> byColumns;
        for (std::size_t col = 0; col < numbers.front().size(); ++col) {
            std::ranges::transform(numbers, std::back_inserter(byColumns),
                                   [col](Objects row) { return row[col]; });
        }
        return cells(std::ssize(rows), std::ssize(numbers.front()), byColumns, false);
    }

    // A matrix of cells, listed by columns: of numbers, and where cells may be nested of arrays.
    Value cells(py::ssize_t rows, py::ssize_t cols, Objects items, bool mayNest) {
        requireSize(rows, cols);
        std::vector<double> re(items.size());
        std::vector<double> im;
        std::vector<std::pair<std::size_t, Value>> arrays;
        for (std::size_t place = 0; place < items.size(); ++place) {
            const auto [number, value] = cell(items[place], mayNest);
            re[place] = number.real();
            if (number.imag() != 0.0) {
                im.resize(items.size());
                im[place] = number.imag();
            }
            if (value) {
                arrays.emplace_back(place, value);
            }
        }
        Value result = Value::matrix(static_cast<int>(rows), static_cast<int>(cols), re, im);
        for (const auto& [place, value] : arrays) {
            const auto at = static_cast<py::ssize_t>(place);
            result.nest(static_cast<int>(at % rows), static_cast<int>(at / rows), value);
        }
        return result;
    }

    // The number of a cell, or its array.
    std::pair<std::complex<double>, Value> cell(py::handle item, bool mayNest) {
        if (const auto found = number(item)) {
            return {*found, Value()};
        }
        if (mayNest && (isArrayLike(item) || isSequence(item))) {
            const Value value = nested(item);
            return value.isScalar() ? std::pair(value.scalar(), Value())
                                    : std::pair(std::complex(0.0), value);
        }
        refuse("holds a " + typeName(item) + " in place of a number" + (mayNest ? " or an array" : ""));
    }

    const Place& place_;
    Lent* const lent_;
    std::unordered_map<PyObject*, Container> containers_;
};

}  // namespace

std::string Place::text() const {
    std::string text = std::string(function) + ": argument " + std::to_string(index + 1);
    if (!name.empty()) {
        text += " (" + std::string(name) + ")";
    }
    return isResult ? text + ", its result" : text;
}

Descent::Descent() {
    requireStack();
    checkSignals();
    if (Py_EnterRecursiveCall(" while converting a value") != 0) {
        throwPending();
    }
}

Descent::~Descent() {
    Py_LeaveRecursiveCall();
}

Value toHost(py::handle object, const Place& place, Lent* lent) {
    return Reader(place, lent).value(object);
}

}  // namespace undula
