// The inner loops of all filter-bank steps, for each instruction set.
//
// Every output is rounded after each product and each sum, as in the plain loop over its terms; what is
// worked on side by side is the outputs. So all instruction sets give the same bits.
#pragma once

#include <cstddef>

namespace undula {

// A source of two sums, of which it may enter only one: at output i it adds first * source[i] to the
// first sum, second * source[i] to the second.
struct Term {
    enum Sums { Both, First, Second };

    const double* source;
    double first;
    double second;
    Sums sums;
};

struct Kernels {
    const char* name;

    // first[i] and second[i] = the sums over the terms, in their order, for i = 0 .. count - 1. What is
    // written must not overlap a source. Without `second`, no term enters the second sum.
    void (*sumPairs)(const Term* terms, int termCount, double* first, double* second, std::size_t count);

    // The same with both sums in turn: out[2i] and out[2i + 1].
    void (*sumInterleaved)(const Term* terms, int termCount, double* out, std::size_t count);

    // Parts `count` numbers by the parity of their place.
    void (*split)(const double* x, std::size_t count, double* even, double* odd);
};

// Those in use: the widest that the processor has, or those of UNDULA_KERNELS in the environment.
const Kernels& kernels();

// All that this processor can run, the widest first; null at the end.
const Kernels* const* availableKernels();

// Uses the named ones from now on; false when the processor does not have them.
bool useKernels(const char* name);

}  // namespace undula
