#include "frame/host_services.h"

#include "frame/floating_point.h"

namespace undula {

namespace {

constexpr std::uint64_t hostArrayLimit = std::uint64_t{1} << 32;

aMatrix* wrap(EfiCallContext* context, int rows, int cols, double* re, double* im) {
    const HostServiceScope scope;
    const auto bytes =
        static_cast<unsigned>(sizeof(double) * static_cast<unsigned>(rows) * static_cast<unsigned>(cols));
    return aMatrix::mk(context->allocator, rows, cols, re, im, bytes);
}

}  // namespace

ErrorValue fail(EfiCallContext* context, const Failure& failure) {
    const HostServiceScope scope;
    return {mkError(context, failure.message, failure.argument, 0)};
}

aComplex* newScalar(EfiCallContext* context, double re, double im) {
    const HostServiceScope scope;
    aComplex* scalar = nullptr;
    context->allocator->newScalar(&scalar);
    if (scalar != nullptr) {
        scalar->tag = TagScalar;
        scalar->re = re;
        scalar->im = im;
    }
    return scalar;
}

bool fitsHost(std::uint64_t rows, std::uint64_t cols) {
    constexpr std::uint64_t limit = hostArrayLimit / sizeof(double);
    return rows == 0 || cols == 0 || (rows < limit && cols < limit && rows * cols < limit);
}

Array<double> newElements(std::uint64_t rows, std::uint64_t cols) {
    if (!fitsHost(rows, cols)) return {};
    return Array<double>::uninitialised(rows * cols);
}

aMatrix* newMatrix(EfiCallContext* context, int rows, int cols, Array<double>& re) {
    aMatrix* matrix = wrap(context, rows, cols, re.data(), nullptr);
    if (matrix != nullptr) re.release();
    return matrix;
}

aMatrix* newMatrix(EfiCallContext* context, int rows, int cols, Array<double>& re, Array<double>& im) {
    aMatrix* matrix = wrap(context, rows, cols, re.data(), im.data());
    if (matrix != nullptr) {
        re.release();
        im.release();
    }
    return matrix;
}

aMatrix* resultMatrix(EfiCallContext* context, int rows, int cols, Array<double>& re) {
    aMatrix* matrix = re ? newMatrix(context, rows, cols, re) : nullptr;
    return matrix != nullptr ? matrix : fail(context, outOfMemory());
}

bool interrupted(EfiCallContext* context) {
    const HostServiceScope scope;
    return context->evaluator->pollInterrupt(1) == efiInterrupted;
}

Poll pollOf(EfiCallContext* context) {
    return {[](void* host) { return interrupted(static_cast<EfiCallContext*>(host)); }, context};
}

Anyval* reposition(Anyval* result, const int* positions, int count) {
    if (!isError(result)) return result;
    auto* error = static_cast<aError*>(result);
    if (error->argIndex >= 1 && error->argIndex <= count) error->argIndex = positions[error->argIndex - 1];
    return result;
}

}  // namespace undula
