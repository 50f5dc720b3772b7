// Packet bases as arguments of calls.
#pragma once

#include "efi/host.h"
#include "packets/basis.h"

namespace undula {

// "must be 1 dimensional packet basis" or "must be 2 dimensional packet basis" unless the basis has
// the columns that data of so many columns asks for.
Failure requireBasisFor(const aMatrix* data, const aMatrix* basis, int argument);

// Reads a real array of two or three columns.
Failure readBasis(const aMatrix* matrix, Basis& basis);

// Checks the entries of a basis that has been read, then that its packets tile the data; `splits`
// receives what findSplits finds.
Failure checkTiling(const Basis& basis, PacketList& splits, int argument);

// Reads a real array of two or three columns whose rows must tile.
Failure readTiling(const aMatrix* matrix, Basis& basis, int argument);

}  // namespace undula
