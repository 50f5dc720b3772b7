// Transforms of several levels.
#pragma once

#include "dwt/boundary.h"
#include "dwt/separable.h"

namespace undula {

enum class Direction { Forward, Inverse };

// Transforms the block in place, one level after the other. A block of one column is a signal; any
// other is an image. The sides must admit the levels. Level j of a forward transform works on the
// smooth part of level j - 1, the first ceil(n / 2^(j - 1)) samples of a side of n.
Failure transformLevels(const BoundaryTreatment& boundary, const FilterBank& bank, const Block& block,
                        std::uint32_t levels, Direction direction, const Poll& poll, Workspace& workspace);

}  // namespace undula
