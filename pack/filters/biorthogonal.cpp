// Bspline: the biorthogonal spline pairs by their orders.
#include <algorithm>
#include <cmath>

#include "filters/active_filter.h"
#include "filters/registry.h"
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
Failure requireOrders(const aComplex* m, const aComplex* n) {
    if (auto failure = requireReal(m, 1)) return failure;
    if (auto failure = requireReal(n, 2)) return failure;
    if (auto failure = requirePositive(m->re, 1)) return failure;
    if (auto failure = requirePositive(n->re, 2)) return failure;
    if (auto failure = requireWhole(m->re, 1)) return failure;
    if (auto failure = requireWhole(n->re, 2)) return failure;
    if (auto failure = requireAtMost(m->re, largestM, 1)) return failure;
    return requireAtMost(n->re, largestN, 2);
}

// Both filters as columns, the synthesis filter padded with zeros.
aMatrix* activePair(EfiCallContext* context) {
    const std::int32_t rows = ActiveFilter.La;
    auto pair = newElements(static_cast<std::uint64_t>(rows), 2);
    if (pair) {
        double* second = std::copy_n(ActiveFilter.ha, rows, pair.data());
        std::fill_n(std::copy_n(ActiveFilter.hs, ActiveFilter.Lb, second), rows - ActiveFilter.Lb, 0.0);
    }
    return resultMatrix(context, rows, 2, pair);
}

}  // namespace

aMatrix* Bspline(EfiCallContext* context, aComplex* m, aComplex* n) {
    if (auto failure = requireOrders(m, n)) return fail(context, failure);
    const BSpline* spline = findBSpline(asIndex(m->re), asIndex(n->re));
    if (spline == nullptr) return fail(context, {Code::FilterUnimplemented, 0});
    select(*spline);
    return activePair(context);
}
