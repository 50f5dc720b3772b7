// Packet tables as values: a column whose cell j holds level j, an array of the data's shape.
#pragma once

#include "dwt/block.h"
#include "efi/host.h"
#include "frame/errors.h"
#include "frame/memory.h"

namespace undula {

// Data has fewer rows than 2^31, so a table has no more levels than these, the data itself included.
inline constexpr std::uint32_t mostLevels = 32;

// The levels of a packet table, in memory of its own.
struct Table {
    Array<double> elements[mostLevels];
    int rows = 0;
    int cols = 0;
    std::uint32_t levels = 0;  // besides the data

    Block level(std::uint32_t j) const {
        return contiguous(elements[j].data(), static_cast<std::uint64_t>(rows),
                          static_cast<std::uint64_t>(cols));
    }
};

// A table whose levels are to be filled.
Result<Table> newTable(int rows, int cols, std::uint32_t levels);

// The levels of a packet table where the caller keeps them.
struct TableLevels {
    const aMatrix* elements[mostLevels];
    std::uint32_t count = 0;  // besides the data
};

// Argument 1 of a call: a column without imaginary parts whose cells are nested arrays of one shape, not
// more of them than the data has levels.
Failure requireTableVector(const aVector* vector);
Result<TableLevels> findLevels(EfiCallContext* context, const aVector* vector);

// A copy of such a table, for those who let others work before they have read it all: a user function
// may write into the table it came from.
Result<Table> readTable(EfiCallContext* context, const aVector* vector);

// The table as a value of the host, which takes its levels over.
Result<aMatrix*> tableValue(EfiCallContext* context, Table& table);

}  // namespace undula
