// daublet, symmlet, coiflet, bl: the built-in orthonormal filters, as columns.
#include <algorithm>
#include <new>

#include "filters/battle_lemarie.h"
#include "filters/built_in.h"
#include "filters/kept.h"
#include "frame/checks.h"
#include "frame/workers.h"

using namespace undula;

namespace {

// An even number of taps, as far as that can be told without looking one up.
Failure requireEvenLength(double taps) {
    if (!isWhole(taps)) return {Code::MustBeEvenInteger, 1};
    if (taps <= 0.0) return {Code::MustBePositiveInteger, 1};
    if (taps > largest32Bits) return {Code::FilterUnimplemented, 1};
    return asIndex(taps) % 2 == 0 ? Failure() : Failure(Code::MustBeEvenInteger, 1);
}

const BattleLemarie* makeBattleLemarie(std::int32_t degree) {
    const std::int32_t taps = battleLemarieTaps(degree);
    const std::int32_t room = taps + OrthonormalWavelet::workLength(taps);
    auto storage = Array<double>::uninitialised(static_cast<std::uint64_t>(room));
    return keep<BattleLemarie>(storage, [&] {
        computeBattleLemarie(degree, storage.data());
        return new (std::nothrow) BattleLemarie(storage.data(), taps, storage.data() + taps, degree);
    });
}

Result<aMatrix*> filterColumn(EfiCallContext* context, const Result<FilterBank>& bank) {
    if (!bank) return bank.failure();
    auto column = newElements(static_cast<std::uint64_t>(bank->La), 1);
    if (column) std::copy_n(bank->ha, bank->La, column.data());
    return newMatrix(context, bank->La, 1, column);
}

template <class Family>
HostValue tabulatedFilter(EfiCallContext* context, const aComplex* length) {
    if (auto failure = requireReal(length, 1)) return toHost(context, failure);
    return toHost(context, filterColumn(context, selectTabulated(findByLength<Family>, length->re)));
}

}  // namespace

Result<FilterBank> undula::selectTabulated(FindByLength* find, double taps) {
    if (auto failure = requireEvenLength(taps)) return failure;
    const OrthonormalWavelet* wavelet = find(asIndex(taps));
    if (wavelet == nullptr) return Failure(Code::FilterUnimplemented, 1);
    return select(*wavelet);
}

Result<FilterBank> undula::selectBattleLemarie(double degree) {
    if (auto failure = requireLevel(degree, 1)) return failure;
    if (degree > highestDegree) return Failure(Code::FilterUnimplemented, 1);
    const auto order = static_cast<std::int32_t>(degree);
    const BattleLemarie* wavelet = findBattleLemarie(order);
    if (wavelet == nullptr) wavelet = makeBattleLemarie(order);
    if (wavelet == nullptr) return Code::OutOfMemory;
    return select(*wavelet);
}

#define FAMILY(Class, function, ...)                               \
    aMatrix* function(EfiCallContext* context, aComplex* length) { \
        return tabulatedFilter<Class>(context, length);            \
    }
#include "filters/families.def"
#undef FAMILY

aMatrix* bl(EfiCallContext* context, aComplex* degree) {
    if (auto failure = requireReal(degree, 1)) return toHost(context, failure);
    return toHost(context, filterColumn(context, selectBattleLemarie(degree->re)));
}
