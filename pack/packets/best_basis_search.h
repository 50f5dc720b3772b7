// The search for the basis of least cost.
//
// Source: R. R. Coifman, M. V. Wickerhauser, Entropy-based algorithms for best basis selection, IEEE
// Trans. Information Theory 38 (1992) 713-718.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/errors.h"
#include "frame/memory.h"
#include "frame/poll.h"
#include "frame/real_function.h"
#include "packets/basis.h"

namespace undula {

// One level of a table, stored by columns. Without elements all numbers are 0.
struct LevelView {
    const double* elements;
    std::ptrdiff_t stride;

    double at(std::uint64_t row, std::uint64_t col) const {
        return elements == nullptr
                   ? 0.0
                   : elements[static_cast<std::ptrdiff_t>(col) * stride + static_cast<std::ptrdiff_t>(row)];
    }
};

// A table of `levels` levels besides the data, of one column (a signal) or more.
struct TableView {
    const LevelView* views;
    std::uint32_t levels;
    std::uint32_t rows;
    std::uint32_t cols;

    bool isSignal() const { return cols < 2; }
};

// The packets of the basis whose costs, summed over coefficients and packets, are least: by ascending
// level, within a level from left to right in the tree. Where a packet costs as much as its children,
// the children are taken. A signal's search polls before each packet; an image's before each row of
// packets of the deepest level and before each level above it.
Code searchBestBasis(const TableView& table, double_to_double_func& cost, const Poll& poll,
                     PacketList& basis);

}  // namespace undula
