#include "filters/families.h"

#include <cstddef>
#include <iterator>
#include <new>
#include <utility>

#include "filters/registry.h"
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

// How a published filter gets the sum sqrt(2).
double asPublished(double tap) { return tap; }
double dividedByRoot(double tap) { return tap / rootOfTwo; }
double timesRoot(double tap) { return tap * rootOfTwo; }

// Static memory for the wavelets of one list of tables.
template <class Family, const auto& tableList>
class Storage {
   public:
    // Where the scaled low-pass filter and the working doubles of the next wavelet go.
    double* doubles(std::int32_t count) { return std::exchange(nextDouble, nextDouble + count); }
    void* object() { return std::exchange(nextObject, nextObject + sizeof(Family)); }

   private:
    static constexpr std::size_t doubleCount() {
        std::size_t count = 0;
        for (const Table& table : tableList) {
            count += static_cast<std::size_t>(table.length + OrthonormalWavelet::workLength(table.length));
        }
        return count;
    }

    double doubleMemory[doubleCount()] = {};
    alignas(Family) std::byte objectMemory[sizeof(Family) * std::size(tableList)] = {};
    double* nextDouble = doubleMemory;
    std::byte* nextObject = objectMemory;
};

// Builds the wavelets of a list of tables.
template <class Family, const auto& tableList, class... More>
void build(double (*scaled)(double), More... more) {
    static constinit Storage<Family, tableList> storage;
    for (const Table& table : tableList) {
        double* low = storage.doubles(table.length);
        for (std::int32_t i = 0; i < table.length; ++i) low[i] = scaled(table.taps[i]);
        double* work = storage.doubles(OrthonormalWavelet::workLength(table.length));
        add(*new (storage.object()) Family(low, table.length, work, more...));
    }
}

}  // namespace

void buildFamilies() {
    const EdgeFilters none;
    build<Daublet, haarTables>(dividedByRoot, none);
    build<Daublet, shortTables>(asPublished, none);
    build<Daublet, daubletTables>(asPublished, none);
    build<Symmlet, shortTables>(asPublished, none);
    build<Symmlet, symmletTables>(dividedByRoot, none);
    build<Coiflet, coifletTables>(timesRoot);
}

}  // namespace undula
