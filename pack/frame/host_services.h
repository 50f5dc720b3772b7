// The host's services as the pack uses them: with the pack's floating-point faults kept aside, and
// with null for whatever the host could not give. Anything that the host throws passes through.
#pragma once

#include "efi/host.h"
#include "frame/errors.h"
#include "frame/memory.h"
#include "frame/poll.h"

namespace undula {

// An error value on its way out of a worker, whatever kind of value the worker declares.
struct ErrorValue {
    Anyval* value;

    template <class T>
    operator T*() const {
        return static_cast<T*>(value);
    }
};

ErrorValue fail(EfiCallContext* context, const Failure& failure);

// The tag of a value; -1 for no value at all.
inline int tagOf(const Anyval* value) {
    return value == nullptr ? -1 : value->tag;
}
inline bool isError(const Anyval* value) {
    return tagOf(value) == TagError;
}
// Whether a worker has failed: with an error value, or with null, as the host could not make one.
inline bool failed(const Anyval* result) {
    return result == nullptr || isError(result);
}

// A scalar that one worker hands to another; the host never sees it.
inline aComplex scalarOf(double value) {
    aComplex scalar = {};
    scalar.tag = TagScalar;
    scalar.re = value;
    return scalar;
}

// A scalar of the host's; null when there is no memory.
aComplex* newScalar(EfiCallContext* context, double re, double im = 0.0);

// Whether a rows x cols array can be a matrix of the host's, whose size in bytes has 32 bits.
bool fitsHost(std::uint64_t rows, std::uint64_t cols);

// An array for the elements of a new matrix; false when there is no memory or no such matrix.
Array<double> newElements(std::uint64_t rows, std::uint64_t cols);

// Makes a matrix around the arrays, which are the host's from then on. Null, with the arrays still
// the caller's, when there is no memory.
aMatrix* newMatrix(EfiCallContext* context, int rows, int cols, Array<double>& re);
aMatrix* newMatrix(EfiCallContext* context, int rows, int cols, Array<double>& re, Array<double>& im);

// The matrix of a worker's result, or the error "out of memory" when it, or already its array, could
// not be had.
aMatrix* resultMatrix(EfiCallContext* context, int rows, int cols, Array<double>& re);

// Whether the user wants to stop.
bool interrupted(EfiCallContext* context);
Poll pollOf(EfiCallContext* context);

// Moves an error, or a failure, about argument i to argument positions[i - 1], 0 for one that the user
// did not write. Other values, and errors about other arguments, pass unchanged.
Anyval* reposition(Anyval* result, const int* positions, int count);

inline Failure reposition(Failure failure, const int* positions, int count) {
    if (failure.argument >= 1 && failure.argument <= count)
        failure.argument = positions[failure.argument - 1];
    return failure;
}

template <int count>
Failure reposition(const Failure& failure, const int (&positions)[count]) {
    return reposition(failure, positions, count);
}

template <class T, int count>
T* reposition(T* result, const int (&positions)[count]) {
    return static_cast<T*>(reposition(static_cast<Anyval*>(result), positions, count));
}

}  // namespace undula
