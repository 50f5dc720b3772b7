// A packet basis as a matrix: one row (level, position) a packet, or (level, row position, column
// position) for an image.
#pragma once

#include "frame/host_services.h"

namespace undula {

// Fills such a matrix row by row. False when there is no memory for it.
class BasisRows {
 public:
    BasisRows(std::uint64_t rowCount, int columnCount)
        : rows(rowCount),
          cols(columnCount),
          list(newElements(rowCount, static_cast<std::uint64_t>(columnCount))) {}

    explicit operator bool() const { return static_cast<bool>(list); }

    void add(double level, double position, double column = 0.0) {
        const double row[] = {level, position, column};
        for (int col = 0; col < cols; ++col)
            list[static_cast<std::size_t>(rows * static_cast<std::uint64_t>(col) + written)] = row[col];
        ++written;
    }

    // The matrix, once all rows are there.
    Result<aMatrix*> result(EfiCallContext* context) {
        return newMatrix(context, static_cast<int>(rows), cols, list);
    }

 private:
    std::uint64_t rows;
    int cols;
    std::uint64_t written = 0;
    Array<double> list;
};

}  // namespace undula
