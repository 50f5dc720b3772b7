// Transforms of several levels.
#pragma once

#include "dwt/image_steps.h"

namespace undula {

enum class Direction { Forward, Inverse };

// Transforms the data into the result, one level after the other; the two are of one shape and do not
// overlap. Data of one column is a signal; any other is an image. The sides must admit the levels. Level
// j of a forward transform works on the smooth part of level j - 1, the first ceil(n / 2^(j - 1)) samples
// of a side of n.
//
// Scratch: of a signal three quarters of its length, of an image an eighth of it and some columns.
Failure transformLevels(const BoundaryTreatment& boundary, const FilterBank& bank, const Block& data,
                        const Block& result, std::uint32_t levels, Direction direction, const Poll& poll,
                        Workspace& workspace);

}  // namespace undula
