// The host's services as the pack uses them, with the pack's floating-point faults kept aside. Whatever
// the host throws passes through.
#pragma once

#include "efi/host.h"
#include "frame/errors.h"
#include "frame/memory.h"
#include "frame/poll.h"

namespace undula {

// A value on its way to the host: what a worker returns, whatever kind it declares.
struct HostValue {
    Anyval* value;

    template <class T>
    operator T*() const {
        return static_cast<T*>(value);
    }
};

Anyval* makeError(EfiCallContext* context, const char* message, int argument);
Anyval* makeError(EfiCallContext* context, const Failure& failure);

// The value, or an error value in its place.
inline HostValue toHost(EfiCallContext* context, const Failure& failure) {
    return {makeError(context, failure)};
}
template <class T>
HostValue toHost(EfiCallContext* context, const Result<T*>& result) {
    return {result ? *result : makeError(context, result.failure())};
}

// The tag of a value; -1 for no value at all.
inline int tagOf(const Anyval* value) {
    return value == nullptr ? -1 : value->tag;
}
inline bool isError(const Anyval* value) {
    return tagOf(value) == TagError;
}

// A scalar that one routine hands to another; the host never sees it.
inline aComplex scalarOf(double value) {
    aComplex scalar = {};
    scalar.tag = TagScalar;
    scalar.re = value;
    return scalar;
}

Result<aComplex*> newScalar(EfiCallContext* context, double re, double im = 0.0);

// Whether a rows x cols array can be a matrix of the host, whose size in bytes has 32 bits.
bool fitsHost(std::uint64_t rows, std::uint64_t cols);

// An array for the elements of a new matrix; false when there is no memory or no such matrix.
Array<double> newElements(std::uint64_t rows, std::uint64_t cols);

// A matrix around the arrays, which belong to the host from then on. They stay with the caller when
// the matrix cannot be made, because there is no memory for it or was none for them.
Result<aMatrix*> newMatrix(EfiCallContext* context, int rows, int cols, Array<double>& re);
Result<aMatrix*> newMatrix(EfiCallContext* context, int rows, int cols, Array<double>& re, Array<double>& im);

// Whether the user wants to stop.
bool interrupted(EfiCallContext* context);
Poll pollOf(EfiCallContext* context);

}  // namespace undula
