#include "dwt/block.h"

#include <algorithm>

namespace undula {

Block partOf(const Block& data, const Rectangle& place) {
    return {data.column(place.cols.start) + place.rows.start, data.stride,
            static_cast<std::uint32_t>(place.rows.length), static_cast<std::uint32_t>(place.cols.length)};
}

void copyBlock(const Block& from, const Block& to) {
    for (std::uint32_t col = 0; col < from.cols; ++col)
        std::copy_n(from.column(col), from.rows, to.column(col));
}

}  // namespace undula
