// Where a packet's coefficients lie in an array, and how they are read.
#pragma once

#include "dwt/subband_layout.h"
#include "efi/host.h"
#include "packets/basis.h"

namespace undula {

// The place of a packet whose level and positions are those of the array.
Rectangle placeIn(const aMatrix* array, std::uint32_t level, std::uint64_t row, std::uint64_t col);
Rectangle placeIn(const aMatrix* array, const Packet& packet);

// Copies the real parts, column after column without gaps.
void copyRectangle(const aMatrix* array, const Rectangle& place, double* out);

}  // namespace undula
