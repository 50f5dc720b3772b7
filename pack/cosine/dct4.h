// The orthonormal discrete cosine transform of type 4, which is its own inverse:
// Y[k] = sqrt(2/n) sum of y[i] cos(pi (i + 1/2) (k + 1/2) / n).
//
// It goes through a complex Fourier transform that the host provides: for an even length one of half the
// length between two passes of twiddle factors, for an odd length one of four times the length.
//
// Source: M. V. Wickerhauser, Adapted Wavelet Analysis from Theory to Software (A K Peters, 1994),
// chapter 3; for even lengths P. Duhamel, Y. Mahieux, J. P. Petit, A fast algorithm for the
// implementation of filter banks based on time domain aliasing cancellation, ICASSP 1991, 2209-2212.
#pragma once

#include <cstdint>

#include "frame/errors.h"
#include "frame/memory.h"

namespace undula {

// A column of complex numbers.
struct FourierColumn {
    double* re = nullptr;
    double* im = nullptr;
    void* handle = nullptr;  // of the service
};

struct FourierResult {
    const double* re = nullptr;
    const double* im = nullptr;
};

// The unscaled inverse Fourier transform: Z[m] = sum of z[i] exp(2 pi i m / n).
struct FourierService {
    void* host;
    // Makes a column of n numbers without values, which lives as long as the call.
    Result<FourierColumn> (*newColumn)(void* host, std::uint64_t n);
    // The result is valid until the next transform.
    Result<FourierResult> (*transform)(void* host, const FourierColumn& column);
};

// Transforms of all lengths of a call; what a length needs is made once.
class Dct4 {
 public:
    explicit Dct4(const FourierService& fourier) : service(fourier) {}

    // Transforms a line of numbers in place.
    Failure transform(double* line, std::uint64_t length);

 private:
    struct Plan {
        std::uint64_t length = 0;
        Array<double> cosines;
        Array<double> sines;
        FourierColumn column;
    };

    Result<const Plan*> plan(std::uint64_t length);
    Failure transformEven(const Plan& plan, double* line);
    Failure transformOdd(const Plan& plan, double* line);

    // The sides of an image, halved again and again, have no more lengths.
    static constexpr int mostPlans = 64;

    FourierService service;
    Plan plans[mostPlans];
    int planCount = 0;
};

}  // namespace undula
