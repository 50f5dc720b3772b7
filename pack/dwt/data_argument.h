// Data as an argument of a transform.
#pragma once

#include "dwt/block.h"
#include "dwt/boundary.h"
#include "frame/matrices.h"

namespace undula {

// Whether the sides of the data can be halved `levels` times.
bool admitsSides(const BoundaryTreatment& boundary, const FilterBank& bank, const aMatrix* data,
                 std::uint64_t levels);

// A copy of the data as a block.
Block blockOf(const aMatrix* data, const Array<double>& copy);

// The data where it stands, for those who only read it. An array that is absent reads as zeros.
class DataView {
 public:
    static Result<DataView> of(const aMatrix* data);
    const Block& block() const { return view; }

    DataView() = default;

 private:
    Block view = {};
    Array<double> zeros;
};

// Copies part of an array into a block of that size.
void copyPart(const aMatrix* array, const Rectangle& place, const Block& out);

// The failure of a step as the call reports it: `tooShort` at the position for data that had not
// enough samples left.
Failure stepFailure(const Failure& failure, Code tooShort, int position);

}  // namespace undula
