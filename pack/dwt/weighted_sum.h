// The one inner loop of all filter-bank steps.
#pragma once

#include <cstddef>

namespace undula {

// One tap: a weight, and where the samples start that it meets at consecutive outputs.
struct Term {
    double weight;
    const double* source;
};

// out[i] = the sum over the terms, in their order, of weight * source[i], for i = 0 .. count - 1.
// Every output is rounded after each product and each sum, as in the plain loop; the outputs are
// what is worked on side by side. `out` must not overlap a source.
void weightedSum(const Term* terms, int termCount, double* out, std::size_t count);

// The same, added term by term onto what `out` holds.
void addWeightedSum(const Term* terms, int termCount, double* out, std::size_t count);

}  // namespace undula
