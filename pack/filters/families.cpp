#include "filters/families.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <new>
#include <numbers>
#include <utility>

#include "filters/registry.h"
#include "filters/tables/bspline.h"
#include "filters/tables/coiflet.h"
#include "filters/tables/daublet.h"
#include "filters/tables/symmlet.h"

namespace undula {

namespace {

using tables::Published;
using tables::PublishedPair;
using tables::Scaling;

double scaled(double tap, Scaling scaling) {
    switch (scaling) {
        case Scaling::None:
            break;
        case Scaling::DividedByRoot:
            return tap / std::numbers::sqrt2;
        case Scaling::TimesRoot:
            return tap * std::numbers::sqrt2;
    }
    return tap;
}

// Doubles that a wavelet takes, its scaled filters included.
constexpr std::int32_t room(const Published& filter) {
    return filter.length + OrthonormalWavelet::workLength(filter.length);
}
constexpr std::int32_t room(const PublishedPair& pair) {
    const std::int32_t dual = pair.dual.length;
    const std::int32_t spline = pair.spline.length;
    return dual + spline + BiorthogonalWavelet::workLength(dual, spline);
}

// Static memory for the wavelets of one list of published filters.
template <class Family, const auto& published>
class Storage {
 public:
    double* doubles(std::int32_t count) { return std::exchange(nextDouble, nextDouble + count); }
    void* object() { return std::exchange(nextObject, nextObject + sizeof(Family)); }

    // A copy of a published filter with the sum sqrt(2).
    const double* filter(const Published& table) {
        double* copy = doubles(table.length);
        std::transform(table.taps, table.taps + table.length, copy,
                       [&](double tap) { return scaled(tap, table.scaling); });
        return copy;
    }

 private:
    static constexpr std::size_t doubleCount() {
        std::size_t count = 0;
        for (const auto& filter : published) count += static_cast<std::size_t>(room(filter));
        return count;
    }

    double doubleMemory[doubleCount()] = {};
    alignas(Family) std::byte objectMemory[sizeof(Family) * std::size(published)] = {};
    double* nextDouble = doubleMemory;
    std::byte* nextObject = objectMemory;
};

template <class Family, const auto& published>
void buildFamily() {
    static_assert(std::all_of(std::begin(published), std::end(published), [](const Published& filter) {
        return filter.length % 2 == 0 && filter.length <= Family::longest && filter.length <= mostTaps;
    }));
    static constinit Storage<Family, published> storage;
    for (const Published& table : published) {
        const double* low = storage.filter(table);
        double* work = storage.doubles(OrthonormalWavelet::workLength(table.length));
        add(*new (storage.object()) Family(low, table.length, work));
    }
}

void buildSplines() {
    static_assert(
        std::all_of(std::begin(tables::bsplines), std::end(tables::bsplines),
                    [](const PublishedPair& pair) { return pair.dual.length <= BSpline::longest; }));
    static constinit Storage<BSpline, tables::bsplines> storage;
    for (const auto& [dual, spline] : tables::bsplines) {
        const double* ha = storage.filter(dual);
        const double* hs = storage.filter(spline);
        double* work = storage.doubles(BiorthogonalWavelet::workLength(dual.length, spline.length));
        add(*new (storage.object()) BSpline(ha, dual.length, hs, spline.length, work));
    }
}

}  // namespace

void buildFamilies() {
#define FAMILY(Class, function, ...) buildFamily<Class, tables::function##s>();
#include "filters/families.def"
#undef FAMILY
    buildSplines();
}

}  // namespace undula
