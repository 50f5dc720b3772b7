// One level of a filter bank over an image: along every column, and then along every row.
//
// Columns are transformed one after the other into a ring of lines that stays in the cache; as soon as
// the columns are there that a pair of output columns is a sum of, it is summed.
#pragma once

#include "dwt/block.h"
#include "dwt/boundary.h"
#include "frame/memory.h"
#include "frame/poll.h"

namespace undula {

// Whether the high-pass part stands before the low-pass part, down the columns and along the rows.
struct Swaps {
    bool inColumns = false;
    bool inRows = false;
};

// Splits `in` into `out`: the same block, or one that does not overlap it. Polls before each column and,
// in all, once a row.
Failure splitImage(const BoundaryTreatment& boundary, const FilterBank& bank, const Block& in,
                   const Block& out, const Swaps& swaps, const Poll& poll, Workspace& workspace);

// Merges `in` into `out`. The part that is low-pass in both directions is read from `smooth`, which may be
// where it stands in `in` or, without swaps, where it stands in `out`. Polls as above.
Failure mergeImage(const BoundaryTreatment& boundary, const FilterBank& bank, const Block& in,
                   const Block& smooth, const Block& out, const Swaps& swaps, const Poll& poll,
                   Workspace& workspace);

// The part of a split image that is low-pass in both directions.
Block smoothPart(const Block& image, const Swaps& swaps);

// The periodic analysis of a block, both of whose sides must be at least 2. No transform calls it, as
// they check the sides for all levels at once; it is the step of an image by itself.
Failure periodic_analysis_step_2d(const FilterBank& bank, const Block& in, const Block& out,
                                  const Swaps& swaps, Workspace& workspace);

}  // namespace undula
