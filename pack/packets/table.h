// Packet tables as values: a column whose cell j holds level j, an array of the data's shape.
#pragma once

#include "dwt/separable.h"
#include "efi/host.h"
#include "frame/errors.h"
#include "frame/memory.h"

namespace undula {

// Data has fewer rows than 2^31, so a table has no more levels than these, the data itself included.
inline constexpr std::uint32_t mostLevels = 32;

// A table that a user hands over.
struct PacketTable {
    const aMatrix* elements[mostLevels];
    std::uint32_t levels = 0;  // besides the data
    int rows = 0;
    int cols = 0;
};

// Reads and checks argument 1 of a call: a column without imaginary parts whose cells are nested
// arrays of one shape, not more of them than the data has levels.
Failure requireTableVector(const aVector* vector);
Failure readTable(EfiCallContext* context, const aVector* vector, PacketTable& table);

// A table under construction.
class NewTable {
 public:
    // Room for the data's shape and all levels; false when there is no memory.
    bool allocate(int rowCount, int colCount, std::uint32_t levelCount);

    // Level j, to be filled.
    Block level(std::uint32_t j) const;
    std::size_t size() const { return static_cast<std::size_t>(rows) * static_cast<std::size_t>(cols); }

    // The table as a value, or an error value.
    aVector* result(EfiCallContext* context);

 private:
    int rows = 0;
    int cols = 0;
    std::uint32_t levels = 0;
    Array<double> elements[mostLevels];
};

}  // namespace undula
