#include "filters/families.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <new>
#include <utility>

#include "filters/edges.h"
#include "filters/registry.h"
#include "filters/tables/bspline.h"
#include "filters/tables/coiflet.h"
#include "filters/tables/daublet.h"
#include "filters/tables/symmlet.h"

namespace undula {

namespace {

constexpr double rootOfTwo = 1.4142135623730951;

// A low-pass filter as published.
struct Table {
    const double* taps;
    std::int32_t length;

    template <std::size_t n>
    constexpr Table(const double (&values)[n]) : taps(values), length(static_cast<std::int32_t>(n)) {}
};

constexpr double haar[] = {1.0, 1.0};

constexpr Table haarTables[] = {haar};
constexpr Table shortTables[] = {tables::daublet4, tables::daublet6};  // of both Daublet and Symmlet
constexpr Table daubletTables[] = {tables::daublet8,  tables::daublet10, tables::daublet12, tables::daublet14,
                                   tables::daublet16, tables::daublet18, tables::daublet20};
constexpr Table symmletTables[] = {tables::symmlet8,  tables::symmlet10, tables::symmlet12, tables::symmlet14,
                                   tables::symmlet16, tables::symmlet18, tables::symmlet20};
constexpr Table coifletTables[] = {tables::coiflet6, tables::coiflet12, tables::coiflet18, tables::coiflet24,
                                   tables::coiflet30};

// A spline pair as published.
struct PairTable {
    Table dual;
    Table spline;
};

constexpr PairTable splineTables[] = {
    {tables::dualSpline1_1, tables::spline1}, {tables::dualSpline1_3, tables::spline1},
    {tables::dualSpline1_5, tables::spline1}, {tables::dualSpline2_2, tables::spline2},
    {tables::dualSpline2_4, tables::spline2}, {tables::dualSpline2_6, tables::spline2},
    {tables::dualSpline2_8, tables::spline2}, {tables::dualSpline3_1, tables::spline3},
    {tables::dualSpline3_3, tables::spline3}, {tables::dualSpline3_5, tables::spline3},
    {tables::dualSpline3_7, tables::spline3}, {tables::dualSpline3_9, tables::spline3},
};

// How a published filter gets the sum sqrt(2).
double asPublished(double tap) {
    return tap;
}
double dividedByRoot(double tap) {
    return tap / rootOfTwo;
}
double timesRoot(double tap) {
    return tap * rootOfTwo;
}

// Doubles that a wavelet takes, its scaled filters included.
constexpr std::int32_t room(const Table& table) {
    return table.length + OrthonormalWavelet::workLength(table.length);
}
constexpr std::int32_t room(const PairTable& pair) {
    const std::int32_t dual = pair.dual.length;
    const std::int32_t spline = pair.spline.length;
    return dual + spline + BiorthogonalWavelet::workLength(dual, spline);
}

// Static memory for the wavelets of one list of tables.
template <class Family, const auto& tableList>
class Storage {
 public:
    double* doubles(std::int32_t count) { return std::exchange(nextDouble, nextDouble + count); }
    void* object() { return std::exchange(nextObject, nextObject + sizeof(Family)); }

    // A copy of a published filter, scaled.
    const double* filter(const Table& table, double (*scaled)(double)) {
        double* copy = doubles(table.length);
        std::transform(table.taps, table.taps + table.length, copy, scaled);
        return copy;
    }

 private:
    static constexpr std::size_t doubleCount() {
        std::size_t count = 0;
        for (const auto& table : tableList) count += static_cast<std::size_t>(room(table));
        return count;
    }

    double doubleMemory[doubleCount()] = {};
    alignas(Family) std::byte objectMemory[sizeof(Family) * std::size(tableList)] = {};
    double* nextDouble = doubleMemory;
    std::byte* nextObject = objectMemory;
};

// Builds the wavelets of a list of tables; `more` gives what else a family's constructor takes.
template <class Family, const auto& tableList, class... More>
void build(double (*scaled)(double), More... more) {
    static constinit Storage<Family, tableList> storage;
    for (const Table& table : tableList) {
        const double* low = storage.filter(table, scaled);
        double* work = storage.doubles(OrthonormalWavelet::workLength(table.length));
        add(*new (storage.object()) Family(low, table.length, work, more(table.length)...));
    }
}

void buildSplines() {
    static constinit Storage<BSpline, splineTables> storage;
    for (const auto& [dual, spline] : splineTables) {
        const double* ha = storage.filter(dual, timesRoot);
        const double* hs = storage.filter(spline, timesRoot);
        double* work = storage.doubles(BiorthogonalWavelet::workLength(dual.length, spline.length));
        add(*new (storage.object()) BSpline(ha, dual.length, hs, spline.length, work));
    }
}

EdgeFilters noEdges(std::int32_t) {
    return {};
}

}  // namespace

void buildFamilies() {
    build<Daublet, haarTables>(dividedByRoot, noEdges);
    build<Daublet, shortTables>(asPublished, edgeFilters);
    build<Daublet, daubletTables>(asPublished, noEdges);
    build<Symmlet, shortTables>(asPublished, edgeFilters);
    build<Symmlet, symmletTables>(dividedByRoot, edgeFilters);
    build<Coiflet, coifletTables>(timesRoot);
    buildSplines();
}

}  // namespace undula
