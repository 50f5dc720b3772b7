// Bspline: the biorthogonal spline pairs by their orders.
#include <algorithm>

#include "filters/built_in.h"
#include "frame/checks.h"
#include "frame/workers.h"

using namespace undula;

namespace {

constexpr double largestM = 3.0;
constexpr double largestN = 10.0;

Failure requirePositive(double order, int argument) {
    return std::islessequal(order, 0.0) ? Failure(Code::MustBePositiveInteger, argument) : Failure();
}

Failure requireAtMost(double order, double largest, int argument) {
    return order > largest ? Failure(Code::FilterUnimplemented, argument) : Failure();
}

// Each question is put to both orders before the next one.
Failure requireOrders(double m, double n) {
    if (auto failure = requirePositive(m, 1)) return failure;
    if (auto failure = requirePositive(n, 2)) return failure;
    if (auto failure = requireWhole(m, 1)) return failure;
    if (auto failure = requireWhole(n, 2)) return failure;
    if (auto failure = requireAtMost(m, largestM, 1)) return failure;
    return requireAtMost(n, largestN, 2);
}

// Both filters as columns, the synthesis filter padded with zeros.
Result<aMatrix*> filterPair(EfiCallContext* context, const Result<FilterBank>& bank) {
    if (!bank) return bank.failure();
    const std::int32_t rows = bank->La;
    auto pair = newElements(static_cast<std::uint64_t>(rows), 2);
    if (pair) {
        double* second = std::copy_n(bank->ha, rows, pair.data());
        std::fill_n(std::copy_n(bank->hs, bank->Lb, second), rows - bank->Lb, 0.0);
    }
    return newMatrix(context, rows, 2, pair);
}

}  // namespace

Result<FilterBank> undula::selectBSpline(double m, double n) {
    if (auto failure = requireOrders(m, n)) return failure;
    const BSpline* spline = findBSpline(asIndex(m), asIndex(n));
    if (spline == nullptr) return Code::FilterUnimplemented;
    return select(*spline);
}

aMatrix* Bspline(EfiCallContext* context, aComplex* m, aComplex* n) {
    if (auto failure = requireRealFrom(1, m, n)) return toHost(context, failure);
    return toHost(context, filterPair(context, selectBSpline(m->re, n->re)));
}
