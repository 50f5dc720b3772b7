#include "packets/packet_geometry.h"

#include "frame/matrices.h"

namespace undula {

Rectangle placeIn(const aMatrix* array, std::uint32_t level, std::uint64_t row, std::uint64_t col) {
    return packetPlace(static_cast<std::uint64_t>(array->rows), static_cast<std::uint64_t>(array->cols),
                       level, row, col);
}

Rectangle placeIn(const aMatrix* array, const Packet& packet) {
    return placeIn(array, static_cast<std::uint32_t>(packet.level), static_cast<std::uint64_t>(packet.row),
                   static_cast<std::uint64_t>(packet.col));
}

void copyRectangle(const aMatrix* array, const Rectangle& place, double* out) {
    for (std::uint64_t c = 0; c < place.cols.length; ++c) {
        for (std::uint64_t r = 0; r < place.rows.length; ++r) {
            *out++ = element(array, static_cast<int>(place.rows.start + r),
                             static_cast<int>(place.cols.start + c));
        }
    }
}

}  // namespace undula
