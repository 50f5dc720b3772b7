// Calls of the pack's functions with Python values. Arguments are converted with the interpreter lock,
// which is let go while the pack works.
#pragma once

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "efihost/pack.h"

namespace undula {

namespace py = pybind11;
using efihost::Function;

// An error value as the result of a call.
struct ErrorValue {
    std::string message;
    int argument;
    std::optional<std::size_t> element = std::nullopt;  // which of many calls has failed
};

// The result, or the ErrorValue in its place. The names of the arguments stand in messages,
// and may be left out.
py::object call(const Function& function, const py::tuple& arguments, const py::tuple& names);

// Calls a function whose result is a real number for each element of equally long arrays of float64 or
// complex128, which replace the arguments at the places. Returns the array of the results, or the first
// ErrorValue. All calls are one turn, so no other thread selects another wavelet meanwhile.
py::object callMany(const Function& function, const py::tuple& arguments, const py::tuple& names,
                    const std::vector<std::size_t>& places, const std::vector<py::array>& arrays);

// The same for each signal of an array of float64, along its last axis, or each image, over its last two,
// in place of the argument at `place`. The results must be arrays of one shape; the array of them has no
// gaps in the columns. None without a signal or image.
py::object callAlong(const Function& function, const py::tuple& arguments, const py::tuple& names,
                     std::size_t place, const py::array& data, int dimensions);

}  // namespace undula
