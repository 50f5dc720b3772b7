// The arguments and results of calls.
#pragma once

#include <complex>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "efi/values.h"

namespace efihost {

class Value;

// A user's function. What it throws comes out of the call in progress.
using Callback = std::function<Value(const std::vector<Value>& arguments)>;
// A real function of one real variable, called without any allocation.
using RealCallback = std::function<double(double)>;

// A handle to a host value. Copies share the value and everything nested in it. The last handle frees
// it, on any thread, even during a call. An empty handle stands for no value.
//
// Factories that take numbers throw std::invalid_argument when sizes do not fit together,
// std::length_error for an array of 4 GiB or more, and std::bad_alloc; accessors throw
// std::logic_error when the value is of another kind, std::out_of_range for a cell outside.
class EFI_HOST Value {
 public:
    Value() = default;

    // Scalars and text.
    template <class Number>
    requires std::is_arithmetic_v<Number> Value(Number number)
        : Value(std::complex<double>(static_cast<double>(number))) {}
    Value(std::complex<double> number);
    Value(std::string_view text);
    Value(const char* text) : Value(std::string_view(text)) {}
    Value(const std::string& text) : Value(std::string_view(text)) {}

    // Matrices that copy the numbers, given by columns. Without imaginary parts they are real.
    static Value column(std::span<const double> re, std::span<const double> im = {});
    static Value matrix(int rows, int cols, std::span<const double> re, std::span<const double> im = {});

    // A real or complex matrix that holds no particular numbers, for the caller to write them.
    static Value blank(int rows, int cols, bool isComplex);

    // Whether there can be a matrix of this size.
    static bool isPossible(std::int64_t rows, std::int64_t cols);

    // A matrix that takes over arrays of rows * cols doubles made with the global operator new. A null
    // array reads as zeros. When this throws, the arrays are still the caller's.
    static Value adopt(int rows, int cols, double* re, double* im = nullptr);

    // A matrix around memory that `keeper` keeps alive, its columns `stride` doubles apart. Packs
    // do not write to it.
    static Value borrow(int rows, int cols, int stride, const double* re, const double* im,
                        std::shared_ptr<const void> keeper);

    // A column of nested values.
    static Value table(const std::vector<Value>& cells);

    // Functions; the tag is TagFunction or TagFunctionAlt.
    static Value function(Callback callback, Tag tag = TagFunction);
    static Value function(RealCallback callback, Tag tag = TagFunction);

    // An error value, and a value of any tag without content.
    static Value error(std::string_view message, int argument);
    static Value ofTag(std::int32_t tag);

    // The handle of a value that a pack points to; empty for null and for what the host did not make.
    static Value of(const Anyval* value);

    explicit operator bool() const { return value_ != nullptr; }
    Anyval* raw() const { return value_.get(); }

    std::int32_t tag() const;
    bool isError() const { return is(TagError); }
    bool isScalar() const { return is(TagScalar); }
    bool isString() const { return is(TagString); }
    bool isMatrix() const { return is(TagArray); }
    bool isFunction() const { return is(TagFunction) || is(TagFunctionAlt); }

    std::complex<double> scalar() const;
    double real() const { return scalar().real(); }
    std::string text() const;

    // Of an error value.
    std::string message() const;
    int argument() const;

    // Matrices. Their memory does not move while a handle lives.
    const aMatrix& matrix() const;
    int rows() const { return matrix().rows; }
    int cols() const { return matrix().cols; }
    std::complex<double> at(int row, int col) const;
    // The parts of a column; empty where the matrix has no such array, which reads as zeros.
    std::span<const double> re(int col = 0) const;
    std::span<const double> im(int col = 0) const;
    // All real or imaginary parts, by columns, zeros included.
    std::vector<double> reals() const;
    std::vector<double> imaginaries() const;

    // Makes this the handle of a scalar, of the present one where no other handle holds that.
    void setScalar(std::complex<double> number);

    // Gives up the real parts of a matrix, which lie by columns without gaps; the caller frees them with the
    // global operator delete, and the matrix reads as zeros from then on. Null, and nothing changes, where
    // another handle holds the matrix or the memory is borrowed.
    double* release();

    // Nested values. A cell holds a number or a value.
    bool anyNested() const;
    Value nested(int row, int col) const;  // empty where the cell holds a number
    void nest(int row, int col, Value value);

 private:
    friend class Values;
    explicit Value(std::shared_ptr<Anyval> value) : value_(std::move(value)) {}
    bool is(Tag wanted) const { return value_ && value_->tag == wanted; }

    std::shared_ptr<Anyval> value_;
};

// How many values exist in the process.
EFI_HOST std::size_t liveValues();

}  // namespace efihost
