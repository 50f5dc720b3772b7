// The signals or images in an array of any number of dimensions, and an array for what becomes of them.
#pragma once

#include <pybind11/numpy.h>

#include <cstddef>
#include <memory>
#include <vector>

#include "efihost/value.h"

namespace undula {

namespace py = pybind11;
using efihost::Value;
using Sides = std::vector<py::ssize_t>;

// The signals along the last axis of an array, or the images over its last two, counted by rows of the
// other axes. None of it needs Python, but the array must live as long.
class Cores {
 public:
    // One dimension for signals, two for images. Of an array of aligned float64.
    Cores(const py::array& array, int dimensions);

    std::size_t count() const { return count_; }
    // The sides of the array but for those of a core.
    const Sides& outerShape() const { return outerShape_; }

    // A core, valid until the next one is asked for. One whose columns have no gaps is not copied.
    Value at(std::size_t index);

 private:
    const double* memoryOf(std::size_t index) const;
    const double* gathered(std::size_t index);

    const double* data_;
    int rows_;
    int cols_ = 1;
    // Distances in numbers, not bytes.
    py::ssize_t rowStep_;
    py::ssize_t colStep_ = 0;
    Sides outerSteps_;
    Sides outerShape_;
    std::size_t count_ = 1;

    // The cores that were gathered last.
    std::vector<double> room_;
    std::size_t firstInRoom_ = 0;
    std::size_t inRoom_ = 0;
    std::shared_ptr<const void> keeper_ = std::make_shared<int>();
};

// An array of results, one for each core, whose columns have no gaps.
class CoreResults {
 public:
    CoreResults(Sides outerShape, int dimensions);

    // To be called before the work on a result.
    void expect(std::size_t index) const;

    // Takes a result over. The first one decides on the shape of all; for another shape, or anything but
    // real numbers, TypeError is raised. The interpreter lock may be held or not.
    void put(std::size_t index, const Value& result);

    // The array; none without a result.
    py::object array() const { return array_; }

 private:
    void makeArray(int rows, int cols);

    Sides outerShape_;
    int dimensions_;
    py::object array_ = py::none();
    double* out_ = nullptr;
    int rows_ = 0;
    int cols_ = 0;
};

}  // namespace undula
