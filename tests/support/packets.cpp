#include "support/packets.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace {

// The packet itself, or its children and what they become.
std::vector<Tiling> tilingsBelow(int dimensions, const TestPacket& packet, int depth) {
    std::vector<Tiling> all = {{packet}};
    if (packet.level == depth) return all;
    std::vector<Tiling> split = {{}};
    for (int child = 0; child < 2 * dimensions; ++child) {
        const int row = 2 * packet.row + (dimensions == 1 ? child : child / 2);
        const int col = dimensions == 1 ? 0 : 2 * packet.col + child % 2;
        std::vector<Tiling> longer;
        for (const Tiling& below : tilingsBelow(dimensions, {packet.level + 1, row, col}, depth)) {
            for (Tiling tiling : split) {
                tiling.insert(tiling.end(), below.begin(), below.end());
                longer.push_back(std::move(tiling));
            }
        }
        split = std::move(longer);
    }
    all.insert(all.end(), split.begin(), split.end());
    return all;
}

}  // namespace

std::vector<Tiling> allTilings(int dimensions, int depth) {
    return tilingsBelow(dimensions, {0, 0, 0}, depth);
}

Tiling randomTiling(int dimensions, int depth, unsigned seed) {
    std::mt19937 random(seed);
    Tiling done;
    Tiling open = {{0, 0, 0}};
    bool reached = false;  // the first path goes all the way down
    while (!open.empty()) {
        const TestPacket packet = open.back();
        open.pop_back();
        const bool stops = packet.level == depth || (reached && random() % 3 == 0);
        reached = reached || packet.level == depth;
        if (stops) {
            done.push_back(packet);
            continue;
        }
        for (int row = 0; row < 2; ++row) {
            for (int col = 0; col < dimensions; ++col) {
                open.push_back({packet.level + 1, 2 * packet.row + row, 2 * packet.col + col});
            }
        }
    }
    std::shuffle(done.begin(), done.end(), random);
    return done;
}

Tiling wholeLevel(int dimensions, int level) {
    Tiling packets;
    for (int row = 0; row < 1 << level; ++row) {
        for (int col = 0; col < (dimensions == 1 ? 1 : 1 << level); ++col)
            packets.push_back({level, row, col});
    }
    return packets;
}

Value basisOf(int dimensions, const Tiling& tiling) {
    std::vector<Numbers> rows;
    for (const auto& [level, row, col] : tiling) {
        rows.push_back({double(level), double(row)});
        if (dimensions == 2) rows.back().push_back(col);
    }
    return basisRows(rows);
}

Value basisOfLevel(int dimensions, int level) {
    return basisOf(dimensions, wholeLevel(dimensions, level));
}

Value basisRows(const std::vector<Numbers>& rows) {
    const std::size_t cols = rows.front().size();
    Numbers values;
    for (std::size_t c = 0; c < cols; ++c) {
        for (const Numbers& each : rows) values.push_back(each[c]);
    }
    return Value::matrix(static_cast<int>(rows.size()), static_cast<int>(cols), values);
}

Value basisRows(int dimensions, std::vector<Numbers> rows) {
    for (Numbers& each : rows) each.resize(static_cast<std::size_t>(dimensions) + 1);
    return basisRows(rows);
}

Span spanOf(int n, int level, int position) {
    if (level == 0) return {0, n};
    const int parent = position / 2;
    const Span whole = spanOf(n, level - 1, parent);
    const int low = (whole.length + 1) / 2;
    const int first = parent % 2 == 0 ? low : whole.length - low;
    return position % 2 == 0 ? Span{whole.start, first} : Span{whole.start + first, whole.length - first};
}

Place placeOf(int rows, int cols, const TestPacket& packet) {
    return {spanOf(rows, packet.level, packet.row),
            cols == 1 ? Span{0, 1} : spanOf(cols, packet.level, packet.col)};
}

Grid Grid::part(const Place& place) const {
    Grid result = {place.rows.length, place.cols.length, {}};
    for (int c = 0; c < result.cols; ++c) {
        for (int r = 0; r < result.rows; ++r)
            result.values.push_back(at(place.rows.start + r, place.cols.start + c));
    }
    return result;
}

void Grid::put(const Place& place, const Grid& part) {
    for (int c = 0; c < part.cols; ++c) {
        for (int r = 0; r < part.rows; ++r) at(place.rows.start + r, place.cols.start + c) = part.at(r, c);
    }
}

Grid noisyGrid(int rows, int cols, unsigned seed) {
    return {rows, cols, noise(static_cast<std::size_t>(rows * cols), seed)};
}

Grid outer(const Numbers& down, const Numbers& along) {
    Grid grid = {static_cast<int>(down.size()), static_cast<int>(along.size()), {}};
    for (const double right : along) {
        for (const double left : down) grid.values.push_back(left * right);
    }
    return grid;
}

Value haar() {
    return column({0.7071067811865475, 0.7071067811865475});
}

Value signal(int n) {
    return noisyGrid(n, 1).value();
}

Value image(int rows, int cols) {
    return noisyGrid(rows, cols).value();
}

Value tableOf(int rows, int cols, int levels) {
    std::vector<Value> cells;
    for (int j = 0; j <= levels; ++j)
        cells.push_back(noisyGrid(rows, cols, static_cast<unsigned>(j + 1)).value());
    return Value::table(cells);
}

Value square(int dimensions, int side) {
    return dimensions == 1 ? signal(side) : image(side, side);
}

Grid picked(const Value& table, const Tiling& tiling) {
    Grid result = Grid::of(table.nested(0, 0));
    result.values.assign(result.values.size(), std::nan(""));
    for (const TestPacket& packet : tiling) {
        const Place place = placeOf(result.rows, result.cols, packet);
        result.put(place, Grid::of(table.nested(packet.level, 0)).part(place));
    }
    return result;
}
