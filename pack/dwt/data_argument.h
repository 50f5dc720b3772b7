// Data as an argument of a transform.
#pragma once

#include "dwt/boundary.h"
#include "dwt/separable.h"
#include "efi/host.h"

namespace undula {

// Whether the sides of the data can be halved so many times. An array of one column is a signal, which
// has but one side.
bool admitsSides(const BoundaryTreatment& boundary, const FilterBank& bank, const aMatrix* data,
                 std::uint64_t levels);

// A copy of the data as a block.
Block blockOf(const aMatrix* data, const Array<double>& copy);

// What a step answered, as the call reports it: `tooShort` at the position for data that had not
// enough samples left.
Failure stepFailure(Code code, Code tooShort, int position);

}  // namespace undula
