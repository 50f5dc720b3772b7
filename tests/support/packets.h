// Packets, tilings and their places, worked out in the plainest way; data, and calls with it.
#pragma once

#include <vector>

#include "support/pack.h"

struct TestPacket {
    int level;
    int row;
    int col = 0;
};

using Tiling = std::vector<TestPacket>;

// All sets of packets that tile a signal (1 dimension) or an image (2), down to a level.
std::vector<Tiling> allTilings(int dimensions, int depth);

// Some tiling that reaches the level.
Tiling randomTiling(int dimensions, int depth, unsigned seed);

// All packets of a level, row by row.
Tiling wholeLevel(int dimensions, int level);

// A row for each packet, in the order given.
Value basisOf(int dimensions, const Tiling& tiling);
Value basisOfLevel(int dimensions, int level);
Value basisRows(const std::vector<Numbers>& rows);
// Rows of levels and positions; of an image the column position is 0.
Value basisRows(int dimensions, std::vector<Numbers> rows);

struct Span {
    int start;
    int length;
};

// Which of n coefficients a packet of a signal holds.
Span spanOf(int n, int level, int position);

// Of data with one column, all of it counts as one column position.
struct Place {
    Span rows;
    Span cols;
};
Place placeOf(int rows, int cols, const TestPacket& packet);

// A matrix in a test's own hands.
struct Grid {
    int rows;
    int cols;
    Numbers values;  // by columns

    static Grid of(const Value& matrix) { return {matrix.rows(), matrix.cols(), matrix.reals()}; }
    Value value() const { return Value::matrix(rows, cols, values); }
    double& at(int row, int col) { return values[static_cast<std::size_t>(col * rows + row)]; }
    double at(int row, int col) const { return values[static_cast<std::size_t>(col * rows + row)]; }

    Grid part(const Place& place) const;
    void put(const Place& place, const Grid& part);
    int dimensions() const { return cols == 1 ? 1 : 2; }
};

Grid noisyGrid(int rows, int cols, unsigned seed = 1);
// The products of the numbers of two directions.
Grid outer(const Numbers& down, const Numbers& along);
Value haar();
Value signal(int n);
Value image(int rows, int cols);
// A table with so many levels besides the data, which is a signal or an image.
Value tableOf(int rows, int cols, int levels);
// A signal, or an image with equal sides.
Value square(int dimensions, int side);

// The coefficients of a tiling, each packet's from its level of a table.
Grid picked(const Value& table, const Tiling& tiling);
