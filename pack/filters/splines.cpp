// bl: the Battle-Lemarie filters by their spline degree.
#include <new>

#include "filters/active_filter.h"
#include "filters/battle_lemarie.h"
#include "filters/filter_columns.h"
#include "filters/kept.h"
#include "frame/checks.h"
#include "frame/workers.h"

using namespace undula;

namespace {

const BattleLemarie* makeBattleLemarie(std::int32_t degree) {
    const std::int32_t taps = splineTaps(degree);
    const std::int32_t room = taps + OrthonormalWavelet::workLength(taps);
    auto storage = Array<double>::uninitialised(static_cast<std::uint64_t>(room));
    return keep<BattleLemarie>(storage, [&] {
        computeSplineFilter(degree, storage.data());
        return new (std::nothrow) BattleLemarie(storage.data(), taps, storage.data() + taps, degree);
    });
}

}  // namespace

aMatrix* bl(EfiCallContext* context, aComplex* degree) {
    if (auto failure = requireReal(degree, 1)) return fail(context, failure);
    if (auto failure = requireLevel(degree->re, 1)) return fail(context, failure);
    if (degree->re > highestSplineDegree) return fail(context, {Code::FilterUnimplemented, 1});
    const auto order = static_cast<std::int32_t>(degree->re);
    const BattleLemarie* wavelet = findBattleLemarie(order);
    if (wavelet == nullptr) wavelet = makeBattleLemarie(order);
    if (wavelet == nullptr) return fail(context, outOfMemory());
    select(*wavelet);
    return activeFilterColumn(context);
}
