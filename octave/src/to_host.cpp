#include <octave/Cell.h>
#include <octave/errwarn.h>
#include <octave/ov-fcn-handle.h>

#include <complex>
#include <memory>
#include <utility>

#include "conversion.h"

namespace undula {
namespace {

constexpr int deepest = 100;  // cell arrays within cell arrays

bool isNumbers(const octave_value& given) {
    return given.isnumeric() || given.islogical();
}

bool readsNumberAsArray(Role role) {
    return role == Role::Array || role == Role::Signal || role == Role::Data || role == Role::Table ||
           role == Role::Filter;
}

bool readsRowAsColumn(Role role) {
    return readsNumberAsArray(role) && role != Role::Array;
}

struct Shape {
    int rows;
    int cols;
};

// Reads one argument.
class Reader {
 public:
    explicit Reader(const Place& place) : place_(place) {}

    Value value(const octave_value& given, Role role) const {
        if (given.is_string()) return text(given);
        if (given.iscell()) return cells(given, role, 0);
        return numbers(given, role);
    }

 private:
    Value text(const octave_value& given) const {
        if (!isText(given)) refuse(place_, "cannot be a text of several rows");
        const std::string letters = given.string_value();
        if (letters.find('\0') != std::string::npos) refuse(place_, "has a character of code 0");
        return letters;
    }

    Shape shapeOf(const octave_value& given, Role role) const {
        const dim_vector size = given.dims();
        if (size.ndims() > 2) {
            refuse(place_, "cannot be an array of " + std::to_string(size.ndims()) + " dimensions");
        }
        if (!Value::isPossible(size(0), size(1))) {
            refuse(place_, "is too large: 4 GiB or more, or a side of 2^31");
        }
        const Shape shape = {static_cast<int>(size(0)), static_cast<int>(size(1))};
        const bool isNothing = shape.rows == 0 && shape.cols == 0;
        if (readsRowAsColumn(role) && isNothing) return {0, 1};
        if (readsRowAsColumn(role) && shape.rows == 1) return {shape.cols, 1};
        return shape;
    }

    Value numbers(const octave_value& given, Role role) const {
        if (given.issparse()) refuse(place_, "cannot be a sparse matrix");
        if (!isNumbers(given)) refuse(place_, "cannot be of class " + given.class_name());
        const Shape shape = shapeOf(given, role);
        if (given.numel() == 1 && !readsNumberAsArray(role)) {
            return given.iscomplex() ? Value(given.complex_value()) : Value(given.double_value());
        }
        return given.iscomplex() ? split(given.complex_array_value(), shape)
                                 : lend(given.array_value(), shape);
    }

    static Value lend(const NDArray& array, Shape shape) {
        const auto keeper = std::make_shared<const NDArray>(array);
        return Value::borrow(shape.rows, shape.cols, shape.rows, keeper->data(), nullptr, keeper);
    }

    static Value split(const ComplexNDArray& array, Shape shape) {
        Value result = Value::blank(shape.rows, shape.cols, true);
        for (octave_idx_type i = 0; i < array.numel(); ++i) {
            result.matrix().re[i] = array(i).real();
            result.matrix().im[i] = array(i).imag();
        }
        return result;
    }

    Value cells(const octave_value& given, Role role, int depth) const {
        if (depth == deepest) refuse(place_, "has cells nested too deeply");
        const Role columns = role == Role::Table ? role : Role::Array;
        const Shape shape = shapeOf(given, columns);
        const Cell cells = given.cell_value();
        Value result = Value::blank(shape.rows, shape.cols, false);
        for (int place = 0; place < static_cast<int>(cells.numel()); ++place) {
            result.matrix().re[place] = 0.0;
            result.nest(place % shape.rows, place / shape.rows, cell(cells(place), columns, depth));
        }
        return result;
    }

    Value cell(const octave_value& given, Role role, int depth) const {
        if (given.iscell()) return cells(given, role, depth + 1);
        if (!isNumbers(given)) {
            refuse(place_, "holds a value of class " + given.class_name() + " in place of an array");
        }
        return numbers(given, role);
    }

    const Place& place_;
};

}  // namespace

std::string Place::text() const {
    std::string text = std::string(function) + ": argument " + std::to_string(position);
    if (!name.empty()) text += " (" + std::string(name) + ")";
    return isResult ? text + ", its result" : text;
}

void refuse(const Place& place, const std::string& reason) {
    error_with_id("Undula:no-such-value", "%s %s", place.text().c_str(), reason.c_str());
}

bool isText(const octave_value& given) {
    return given.is_string() && given.ndims() == 2 && given.rows() <= 1;
}

bool isRow(const octave_value& given) {
    if (given.iscell()) return !given.isempty() && isRow(given.cell_value()(0));
    return isNumbers(given) && given.ndims() == 2 && given.rows() == 1 && given.columns() != 1;
}

Value toHost(const octave_value& given, const Place& place, Role role, bool asRows) {
    if (given.is_function_handle() || given.is_inline_function()) {
        return userFunction(given, place, role, asRows);
    }
    return Reader(place).value(given, role);
}

}  // namespace undula
