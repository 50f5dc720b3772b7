#include "dwt/weighted_sum.h"

namespace undula {

namespace {

#if defined(__SSE2_MATH__) || !defined(__i386__)

// Two numbers at a time: the width changes no result.
using Lane __attribute__((vector_size(16), aligned(8), may_alias)) = double;

Lane load(const double* from) {
    return *reinterpret_cast<const Lane*>(from);
}
void store(double* to, Lane value) {
    *reinterpret_cast<Lane*>(to) = value;
}

constexpr std::size_t laneWidth = 2;
constexpr std::size_t blockLanes = 8;
constexpr std::size_t blockWidth = laneWidth * blockLanes;

// A block of outputs stays in registers while all terms pass.
template <bool onto>
void sumBlock(const Term* terms, int termCount, double* out, std::size_t at) {
    Lane sums[blockLanes];
    for (std::size_t b = 0; b < blockLanes; ++b) sums[b] = onto ? load(out + at + b * laneWidth) : Lane{};
    for (int t = 0; t < termCount; ++t) {
        const double* source = terms[t].source + at;
        const double weight = terms[t].weight;
        const Lane weights = {weight, weight};
        for (std::size_t b = 0; b < blockLanes; ++b) sums[b] += weights * load(source + b * laneWidth);
    }
    for (std::size_t b = 0; b < blockLanes; ++b) store(out + at + b * laneWidth, sums[b]);
}

#else

// The x87 unit does one number at a time, and its control word must reach every operation.
constexpr std::size_t blockWidth = 1;

template <bool onto>
void sumBlock(const Term* terms, int termCount, double* out, std::size_t at) {
    double sum = onto ? out[at] : 0.0;
    for (int t = 0; t < termCount; ++t) sum += terms[t].weight * terms[t].source[at];
    out[at] = sum;
}

#endif

template <bool onto>
void sum(const Term* terms, int termCount, double* out, std::size_t count) {
    std::size_t at = 0;
    for (; at + blockWidth <= count; at += blockWidth) sumBlock<onto>(terms, termCount, out, at);
    for (; at < count; ++at) {
        double value = onto ? out[at] : 0.0;
        for (int t = 0; t < termCount; ++t) value += terms[t].weight * terms[t].source[at];
        out[at] = value;
    }
}

}  // namespace

void weightedSum(const Term* terms, int termCount, double* out, std::size_t count) {
    sum<false>(terms, termCount, out, count);
}

void addWeightedSum(const Term* terms, int termCount, double* out, std::size_t count) {
    sum<true>(terms, termCount, out, count);
}

}  // namespace undula
