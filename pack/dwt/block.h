// Rectangles of numbers.
#pragma once

#include <cstddef>
#include <cstdint>

#include "dwt/subband_layout.h"

namespace undula {

// Part of a matrix that is stored by columns: element (r, c) is origin[c * stride + r].
struct Block {
    double* origin;
    std::ptrdiff_t stride;
    std::uint32_t rows;
    std::uint32_t cols;

    bool isEmpty() const { return rows == 0 || cols == 0; }
    // A signal has one column; so has no data at all.
    bool isSignal() const { return cols < 2; }
    std::size_t size() const { return static_cast<std::size_t>(rows) * cols; }
    double* column(std::uint64_t col) const { return origin + static_cast<std::ptrdiff_t>(col) * stride; }
};

// A block whose columns follow one another without gaps.
inline Block contiguous(double* elements, std::uint64_t rows, std::uint64_t cols) {
    return {elements, static_cast<std::ptrdiff_t>(rows), static_cast<std::uint32_t>(rows),
            static_cast<std::uint32_t>(cols)};
}

Block partOf(const Block& data, const Rectangle& place);

// Copies a block onto another of its size.
void copyBlock(const Block& from, const Block& to);

}  // namespace undula
