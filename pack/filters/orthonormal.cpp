// daublet, symmlet, coiflet: the tabulated orthonormal filters by their number of taps.
#include <algorithm>

#include "filters/active_filter.h"
#include "filters/filter_columns.h"
#include "filters/registry.h"
#include "frame/checks.h"
#include "frame/workers.h"

using namespace undula;

namespace {

using Lookup = const OrthonormalWavelet* (*)(std::int64_t taps);

// An even number of taps, as far as that can be told without looking one up.
Failure requireEvenLength(const aComplex* length) {
    if (auto failure = requireReal(length, 1)) return failure;
    const double taps = length->re;
    if (requireWhole(taps, 1)) return {Code::MustBeEvenInteger, 1};
    if (taps <= 0.0) return {Code::MustBePositiveInteger, 1};
    if (taps > 4294967295.0) return {Code::FilterUnimplemented, 1};
    return asIndex(taps) % 2 == 0 ? Failure() : Failure(Code::MustBeEvenInteger, 1);
}

aMatrix* selectFamily(EfiCallContext* context, const aComplex* length, Lookup lookup) {
    if (auto failure = requireEvenLength(length)) return fail(context, failure);
    const OrthonormalWavelet* wavelet = lookup(asIndex(length->re));
    if (wavelet == nullptr) return fail(context, {Code::FilterUnimplemented, 1});
    select(*wavelet);
    return activeFilterColumn(context);
}

}  // namespace

aMatrix* undula::activeFilterColumn(EfiCallContext* context) {
    const int taps = ActiveFilter.La;
    auto column = newElements(static_cast<std::uint64_t>(taps), 1);
    if (column) std::copy_n(ActiveFilter.ha, taps, column.data());
    return resultMatrix(context, taps, 1, column);
}

aMatrix* daublet(EfiCallContext* context, aComplex* length) {
    return selectFamily(context, length, findDaublet);
}
aMatrix* symmlet(EfiCallContext* context, aComplex* length) {
    return selectFamily(context, length, findSymmlet);
}
aMatrix* coiflet(EfiCallContext* context, aComplex* length) {
    return selectFamily(context, length, findCoiflet);
}
