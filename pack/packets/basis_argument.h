// Packet bases as arguments of calls.
#pragma once

#include "efi/host.h"
#include "packets/basis.h"

namespace undula {

// "must be 1 dimensional packet basis" or "must be 2 dimensional packet basis" unless the basis has
// the columns that signals or images ask for.
Failure requireBasisFor(const aMatrix* data, const aMatrix* basis, int argument);

// Reads a real array of two or three columns.
Result<Basis> readBasis(const aMatrix* matrix);

// The same of one whose entries must be packets that tile the data.
Result<Basis> readTiling(const aMatrix* matrix, int argument);

}  // namespace undula
