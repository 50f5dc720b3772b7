#include "cores.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <stdexcept>

#include "interpreter_lock.h"

namespace undula {
namespace {

constexpr py::ssize_t wordSize = sizeof(double);
// As many numbers as a line of the cache holds: so many signals beside each other are gathered at once.
constexpr py::ssize_t lineLength = 8;

int side(py::ssize_t length) {
    if (length > std::numeric_limits<int>::max()) {
        throw std::length_error("a signal or image with a side of 2^31");
    }
    return static_cast<int>(length);
}

// Writes a matrix by columns. Lines of columns are gone through together, as they share the lines of the
// cache where a row has no gaps.
void gather(const double* from, py::ssize_t rows, py::ssize_t rowStep, py::ssize_t cols, py::ssize_t colStep,
            double* out) {
    for (py::ssize_t first = 0; first < cols; first += lineLength) {
        const py::ssize_t last = std::min(first + lineLength, cols);
        for (py::ssize_t row = 0; row < rows; ++row) {
            for (py::ssize_t col = first; col < last; ++col) {
                out[col * rows + row] = from[row * rowStep + col * colStep];
            }
        }
    }
}

// Has the memory of a signal on its way while there is other work, unless it is so much that it would drive
// out of the cache what is worked on.
constexpr int forReading = 0;
constexpr int forWriting = 1;
template <int purpose>
void prefetch(const double* signal, py::ssize_t length) {
    constexpr py::ssize_t most = 2048;
    for (py::ssize_t i = 0; i < std::min(length, most); i += lineLength) {
        __builtin_prefetch(signal + i, purpose);
    }
}

}  // namespace

Cores::Cores(const py::array& array, int dimensions)
    : data_(static_cast<const double*>(array.data())),
      rows_(side(array.shape(array.ndim() - dimensions))),
      rowStep_(array.strides(array.ndim() - dimensions) / wordSize) {
    if (dimensions == 2) {
        cols_ = side(array.shape(array.ndim() - 1));
        colStep_ = array.strides(array.ndim() - 1) / wordSize;
    }
    for (py::ssize_t axis = 0; axis < array.ndim() - dimensions; ++axis) {
        outerShape_.push_back(array.shape(axis));
        outerSteps_.push_back(array.strides(axis) / wordSize);
        count_ *= static_cast<std::size_t>(array.shape(axis));
    }
}

const double* Cores::memoryOf(std::size_t index) const {
    auto left = static_cast<py::ssize_t>(index);
    py::ssize_t offset = 0;
    for (std::size_t axis = outerShape_.size(); axis-- > 0;) {
        offset += left % outerShape_[axis] * outerSteps_[axis];
        left /= outerShape_[axis];
    }
    return data_ + offset;
}

const double* Cores::gathered(std::size_t index) {
    const auto size = static_cast<std::size_t>(rows_) * static_cast<std::size_t>(cols_);
    if (index < firstInRoom_ || index >= firstInRoom_ + inRoom_) {
        const bool areSignals = cols_ == 1 && !outerShape_.empty();
        const py::ssize_t step = areSignals ? outerSteps_.back() : colStep_;
        py::ssize_t cols = cols_;
        if (areSignals) {
            const py::ssize_t length = outerShape_.back();
            cols = std::min(lineLength, length - static_cast<py::ssize_t>(index) % length);
        }
        room_.resize(static_cast<std::size_t>(rows_ * cols));
        gather(memoryOf(index), rows_, rowStep_, cols, step, room_.data());
        firstInRoom_ = index;
        inRoom_ = areSignals ? static_cast<std::size_t>(cols) : 1;
    }
    return room_.data() + (index - firstInRoom_) * size;
}

Value Cores::at(std::size_t index) {
    const bool hasColumns = (rows_ <= 1 || rowStep_ == 1) && (cols_ <= 1 || colStep_ >= rows_) &&
                            colStep_ <= std::numeric_limits<std::int32_t>::max();
    const double* const memory = hasColumns ? memoryOf(index) : gathered(index);
    if (hasColumns && cols_ == 1 && index + 1 < count_) {
        prefetch<forReading>(memoryOf(index + 1), rows_);
    }
    const int stride = hasColumns && cols_ > 1 ? static_cast<int>(colStep_) : rows_;
    return Value::borrow(rows_, cols_, stride, memory, nullptr, keeper_);
}

CoreResults::CoreResults(Sides outerShape, int dimensions)
    : outerShape_(std::move(outerShape)), dimensions_(dimensions) {}

void CoreResults::makeArray(int rows, int cols) {
    const LockHeld lock;
    Sides shape = outerShape_;
    Sides strides(shape.size());
    py::ssize_t step = wordSize * rows * cols;
    for (std::size_t axis = shape.size(); axis-- > 0;) {
        strides[axis] = step;
        step *= shape[axis];
    }
    shape.push_back(rows);
    strides.push_back(wordSize);
    if (dimensions_ == 2) {
        shape.push_back(cols);
        strides.push_back(wordSize * rows);
    }
    py::array_t<double> made(shape, strides);
    out_ = made.mutable_data();
    array_ = std::move(made);
    rows_ = rows;
    cols_ = cols;
}

void CoreResults::expect(std::size_t index) const {
    if (out_ != nullptr && cols_ == 1) {
        prefetch<forWriting>(out_ + index * static_cast<std::size_t>(rows_), rows_);
    }
}

void CoreResults::put(std::size_t index, const Value& result) {
    const bool fits = result.isMatrix() && result.matrix().im == nullptr && !result.anyNested() &&
                      (dimensions_ == 2 || result.cols() == 1);
    if (fits && out_ == nullptr) {
        makeArray(result.rows(), result.cols());
    }
    if (!fits || result.rows() != rows_ || result.cols() != cols_) {
        throw py::type_error("its results are not arrays of one shape");
    }
    const auto size = static_cast<std::size_t>(rows_) * static_cast<std::size_t>(cols_);
    double* out = out_ + index * size;
    for (int col = 0; col < cols_; ++col) {
        const auto numbers = result.re(col);
        out = numbers.empty() ? std::fill_n(out, rows_, 0.0) : std::ranges::copy(numbers, out).out;
    }
}

}  // namespace undula
