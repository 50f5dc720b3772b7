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

Anyval* makeError(EfiCallContext* context, const char* message, int argument) {
    const HostServiceScope scope;
    return mkError(context, message, argument, 0);
}

Anyval* makeError(EfiCallContext* context, const Failure& failure) {
    if (failure.value != nullptr) return failure.value;
    return makeError(context, messageOf(failure.code), failure.argument);
}

Result<aComplex*> newScalar(EfiCallContext* context, double re, double im) {
    const HostServiceScope scope;
    aComplex* scalar = nullptr;
    context->allocator->newScalar(&scalar);
    if (scalar == nullptr) return Code::OutOfMemory;
    scalar->tag = TagScalar;
    scalar->re = re;
    scalar->im = im;
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

Result<aMatrix*> newMatrix(EfiCallContext* context, int rows, int cols, Array<double>& re) {
    aMatrix* matrix = re ? wrap(context, rows, cols, re.data(), nullptr) : nullptr;
    if (matrix == nullptr) return Code::OutOfMemory;
    re.release();
    return matrix;
}

Result<aMatrix*> newMatrix(EfiCallContext* context, int rows, int cols, Array<double>& re,
                           Array<double>& im) {
    aMatrix* matrix = re && im ? wrap(context, rows, cols, re.data(), im.data()) : nullptr;
    if (matrix == nullptr) return Code::OutOfMemory;
    re.release();
    im.release();
    return matrix;
}

bool interrupted(EfiCallContext* context) {
    const HostServiceScope scope;
    return context->evaluator->pollInterrupt(1) == efiInterrupted;
}

Poll pollOf(EfiCallContext* context) {
    return {[](void* host) { return interrupted(static_cast<EfiCallContext*>(host)); }, context};
}

}  // namespace undula
