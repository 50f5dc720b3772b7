// The arithmetic without a host, for compare.py: transforms into results that are there already, and
// what the machine needs for copying and for multiplying and adding alone.
#include <cstring>

#include "dwt/kernels.h"
#include "dwt/multilevel.h"
#include "filters/names.h"
#include "packets/packet_steps.h"

using namespace undula;

namespace {

const BoundaryTreatment& boundaryOf(char letter) {
    return letter == 's' ? symmetricBoundary : letter == 'i' ? intervalBoundary : periodicBoundary;
}

FilterBank bankOf(const char* name) {
    const aString text = {{TagString}, name};
    return *selectWaveletString(&text);
}

Block blockOf(double* elements, long rows, long cols) {
    return contiguous(elements, static_cast<std::uint64_t>(rows), static_cast<std::uint64_t>(cols));
}

Workspace workspace;

using Vector __attribute__((vector_size(64))) = double;

// Products and sums of eight chains, one after the other as in the steps, with nothing to load.
[[gnu::target_clones("avx512f", "avx2", "default")]] double multiplyAndAdd(long count) {
    Vector sums[8] = {};
    const double weights[2] = {1.0 + 1e-9, 1.0 - 1e-9};
    Vector x = sums[0] + 1.0;
    for (long i = 0; i < count; i += 64) {
        const double weight = weights[i / 64 % 2];
        for (Vector& sum : sums) sum += weight * x;
        asm volatile("" : "+m"(x));
    }
    double total = 0.0;
    for (const Vector& sum : sums) total += sum[0];
    return total;
}

}  // namespace

extern "C" {

// 1 when the processor has the kernels of that name, which are used from then on.
int bench_kernels(const char* name) {
    return useKernels(name);
}
const char* bench_kernel_name() {
    return kernels().name;
}

// Boundary p, s or i. Returns 0, or 1 when the transform refuses.
int bench_transform(const char* wavelet, char boundary, int inverse, double* in, double* out, long rows,
                    long cols, unsigned levels, int times) {
    const FilterBank bank = bankOf(wavelet);
    const Direction direction = inverse ? Direction::Inverse : Direction::Forward;
    while (times-- > 0) {
        if (transformLevels(boundaryOf(boundary), bank, blockOf(in, rows, cols), blockOf(out, rows, cols),
                            levels, direction, {}, workspace))
            return 1;
    }
    return 0;
}

// A packet table: the data and `levels` levels one after the other.
int bench_packets(const char* wavelet, char boundary, double* in, double* table, long rows, long cols,
                  unsigned levels, int times) {
    const FilterBank bank = bankOf(wavelet);
    Block blocks[32];
    for (unsigned level = 0; level <= levels; ++level)
        blocks[level] = blockOf(table + static_cast<long>(level) * rows * cols, rows, cols);
    while (times-- > 0) {
        copyBlock(blockOf(in, rows, cols), blocks[0]);
        if (splitIntoTable(boundaryOf(boundary), bank, blocks, levels, {}, workspace)) return 1;
    }
    return 0;
}

int bench_copy(const double* in, double* out, long count, int times) {
    while (times-- > 0) {
        std::memcpy(out, in, static_cast<std::size_t>(count) * sizeof(double));
        asm volatile("" : : "r"(out) : "memory");
    }
    return 0;
}

int bench_multiply_add(long count, int times) {
    volatile double total = 0.0;
    while (times-- > 0) total = total + multiplyAndAdd(count);
    return 0;
}
}
