#include "costs.h"

#include <pybind11/numpy.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string>
#include <string_view>

namespace undula {
namespace {

namespace py = pybind11;

double magnitude(double x, double /*unused*/) {
    return std::abs(x);
}

// The guard is for the square, which is 0 for small numbers too.
double entropy(double x, double /*unused*/) {
    const double energy = x * x;
    return energy == 0.0 ? 0.0 : -energy * std::log(energy);
}

// Zero costs what the smallest normal number does, and is so the cheapest.
double logarithm(double x, double /*unused*/) {
    constexpr double smallest = std::numeric_limits<double>::min();
    return 2.0 * std::log(std::max(std::abs(x), smallest));
}

double isAbove(double x, double threshold) {
    return std::isnan(x) ? x : double(std::abs(x) > threshold);
}

double clippedEnergy(double x, double threshold) {
    return std::isnan(x) ? x : std::min(x * x, threshold * threshold);
}

struct Kind {
    std::string_view name;
    double (*of)(double x, double threshold);
    bool hasThreshold;
};

constexpr std::array kinds{
    Kind{"shannon", entropy, false},
    Kind{"l1", magnitude, false},
    Kind{"log_energy", logarithm, false},
    Kind{"count_above", isAbove, true},
    Kind{"clipped_energy", clippedEnergy, true},
};

struct Cost {
    const Kind* kind;
    double threshold;

    double operator()(double x) const { return kind->of(x, threshold); }
};

Cost makeCost(const std::string& name, double threshold) {
    const auto* const kind =
        std::find_if(kinds.begin(), kinds.end(), [&](const Kind& each) { return each.name == name; });
    if (kind == kinds.end()) {
        throw py::value_error("no cost is called " + name);
    }
    return {kind, threshold};
}

py::str textOf(const Cost& cost) {
    const py::str name("undula.costs." + std::string(cost.kind->name));
    return cost.kind->hasThreshold ? py::str("{}({!r})").format(name, cost.threshold) : name;
}

py::tuple partsOf(const Cost& cost) {
    return py::make_tuple(py::module_::import("undula.costs").attr("_cost"),
                          py::make_tuple(std::string(cost.kind->name), cost.threshold));
}

py::object valuesOf(const Cost& cost, const py::object& numbers) {
    const py::array array = py::array::ensure(numbers);
    if (!array || std::string_view("biuf").find(array.dtype().kind()) == std::string_view::npos) {
        throw py::type_error(std::string(py::str(textOf(cost))) + " takes real numbers");
    }
    return py::vectorize(cost)(py::array_t<double>(array));
}

}  // namespace

void exposeCosts(py::module_& module) {
    py::class_<Cost>(module, "Cost", "A cost of coefficients; undula.costs describes them.")
        .def("__call__", &valuesOf, py::arg("x"), "The cost of a number, or of each number of an array.")
        .def("__repr__", &textOf)
        .def("__reduce__", &partsOf, "What it is made of, for copies and pickling.");
    module.def("cost", &makeCost, py::arg("name"), py::arg("threshold") = 0.0, "The cost of that name.");
}

std::optional<efihost::Value> costFunction(py::handle object) {
    if (!py::isinstance<Cost>(object)) {
        return std::nullopt;
    }
    return efihost::Value::function(efihost::RealCallback(object.cast<const Cost&>()));
}

}  // namespace undula
