#include "cosine/host_fourier.h"

#include <algorithm>

#include "frame/floating_point.h"
#include "frame/host_services.h"

namespace undula {

namespace {

// The column is the host's, and freed with the other values of the call.
Result<FourierColumn> newColumn(void* host, std::uint64_t n) {
    auto re = newElements(n, 1);
    auto im = newElements(n, 1);
    if (!re || !im) return Code::OutOfMemory;
    const auto matrix = newMatrix(static_cast<EfiCallContext*>(host), static_cast<int>(n), 1, re, im);
    if (!matrix) return matrix.failure();
    return FourierColumn{(*matrix)->re, (*matrix)->im, *matrix};
}

const double* orZeros(const double* part, double* room, std::size_t n) {
    if (part != nullptr) return part;
    std::fill_n(room, n, 0.0);
    return room;
}

Result<FourierResult> transform(void* host, const FourierColumn& column) {
    const HostServiceScope scope;
    auto* matrix = static_cast<aMatrix*>(column.handle);
    const aMatrix* transformed = ICFFT(static_cast<EfiCallContext*>(host), matrix);
    const bool isColumn =
        tagOf(transformed) == TagArray && transformed->cols == 1 && transformed->rows == matrix->rows;
    if (!isColumn) return Code::InternalFftError;
    // The column has served, so it may hold the zeros that the host need not write.
    const auto n = static_cast<std::size_t>(matrix->rows);
    return FourierResult{orZeros(transformed->re, column.re, n), orZeros(transformed->im, column.im, n)};
}

}  // namespace

FourierService fourierOf(EfiCallContext* context) {
    return {context, newColumn, transform};
}

}  // namespace undula
