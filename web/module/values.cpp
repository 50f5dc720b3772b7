// Values, made and read.
#include <cmath>
#include <complex>
#include <string_view>
#include <vector>

#include "entries.h"

namespace {

using undula::handleOf;
using undula::Value;

// Of each cell of an array that holds nested values.
template <class Test>
bool allCells(const Value& value, Test test) {
    for (int col = 0; col < value.cols(); ++col) {
        for (int row = 0; row < value.rows(); ++row) {
            const Value nested = value.nested(row, col);
            if (!test(nested ? nested : Value(value.at(row, col)))) return false;
        }
    }
    return true;
}

bool isFiniteNumber(std::complex<double> number) {
    return std::isfinite(number.real()) && std::isfinite(number.imag());
}

bool isFiniteColumn(std::span<const double> numbers) {
    return std::all_of(numbers.begin(), numbers.end(), [](double x) { return std::isfinite(x); });
}

}  // namespace

bool undula::isFinite(const Value& value) {
    if (value.isScalar()) return isFiniteNumber(value.scalar());
    if (!value.isMatrix()) return true;
    if (value.anyNested()) return allCells(value, isFinite);
    for (int col = 0; col < value.cols(); ++col) {
        if (!isFiniteColumn(value.re(col)) || !isFiniteColumn(value.im(col))) return false;
    }
    return true;
}

TO_JAVASCRIPT(makeScalar) Value* makeScalar(double re, double im) {
    return handleOf([=] { return Value(std::complex<double>(re, im)); });
}

// Takes UTF-8.
TO_JAVASCRIPT(makeText) Value* makeText(const char* bytes, std::size_t length) {
    return handleOf([=] { return Value(std::string_view(bytes, length)); });
}

// An array of any numbers, to be written through `numbersOf`.
TO_JAVASCRIPT(makeArray) Value* makeArray(int rows, int cols, bool isComplex) {
    return handleOf([=] { return Value::blank(rows, cols, isComplex); });
}

TO_JAVASCRIPT(makeTable) Value* makeTable(const Value* const* cells, std::size_t count) {
    return handleOf([=] {
        std::vector<Value> copies;
        for (const Value* cell : std::span(cells, count)) copies.push_back(*cell);
        return Value::table(copies);
    });
}

// A function of JavaScript, which knows it by a number.
TO_JAVASCRIPT(makeFunction) Value* makeFunction(int function) {
    return handleOf([=] {
        return Value::function(efihost::Callback([=](const std::vector<Value>& arguments) {
            return undula::callUserFunction(function, arguments);
        }));
    });
}

// The same, of a real function of one real variable.
TO_JAVASCRIPT(makeRealFunction) Value* makeRealFunction(int function) {
    return handleOf([=] {
        return Value::function(
            efihost::RealCallback([=](double x) { return undula::callRealFunction(function, x); }));
    });
}

TO_JAVASCRIPT(freeValue) void freeValue(Value* value) {
    delete value;
}

// A Tag (efi/values.h).
TO_JAVASCRIPT(tagOf) int tagOf(const Value* value) {
    return value->tag();
}

TO_JAVASCRIPT(realOf) double realOf(const Value* value) {
    return value->scalar().real();
}

TO_JAVASCRIPT(imaginaryOf) double imaginaryOf(const Value* value) {
    return value->scalar().imag();
}

TO_JAVASCRIPT(rowsOf) int rowsOf(const Value* value) {
    return value->rows();
}

TO_JAVASCRIPT(columnsOf) int columnsOf(const Value* value) {
    return value->cols();
}

// A column of the real or imaginary parts; null where they read as zeros.
TO_JAVASCRIPT(numbersOf) const double* numbersOf(const Value* value, int column, bool imaginary) {
    return (imaginary ? value->im(column) : value->re(column)).data();
}

TO_JAVASCRIPT(hasNested) bool hasNested(const Value* value) {
    return value->anyNested();
}

// The value in a cell, a scalar where it holds a number.
TO_JAVASCRIPT(cellOf) Value* cellOf(const Value* value, int row, int column) {
    return handleOf([=] {
        const Value nested = value->nested(row, column);
        return nested ? nested : Value(value->at(row, column));
    });
}

// Of a text, or the message of an error. Free it.
TO_JAVASCRIPT(textOf) std::string* textOf(const Value* value) {
    return new (std::nothrow) std::string(value->isError() ? value->message() : value->text());
}

TO_JAVASCRIPT(bytesOf) const char* bytesOf(const std::string* text) {
    return text->data();
}

TO_JAVASCRIPT(lengthOf) std::size_t lengthOf(const std::string* text) {
    return text->size();
}

TO_JAVASCRIPT(freeText) void freeText(std::string* text) {
    delete text;
}

TO_JAVASCRIPT(faultyArgument) int faultyArgument(const Value* error) {
    return error->argument();
}
