// Local cosine transforms of signals and images.
//
// Source: R. R. Coifman, Y. Meyer, Remarques sur l'analyse de Fourier a fenetre, C. R. Acad. Sci.
// Paris 312 (1991) 259-261.
#pragma once

#include "cosine/bell.h"
#include "cosine/dct4.h"
#include "dwt/block.h"
#include "frame/poll.h"
#include "packets/basis.h"

namespace undula {

// The bells down the columns and along the rows of an image; a signal has the first alone.
struct Bells {
    BellSamples down;
    BellSamples along;
    // Whether the second is a bell of its own; otherwise the first serves both directions.
    bool separate = false;

    const BellSamples& forRows() const { return separate ? along : down; }
};

// Sums on the way to a coefficient can overflow where the coefficient does not. Divides data that are
// so large by a power of two, and returns it; 1 for others. What the data become, multiplied by it,
// overflows where the true value does.
double makeRoom(const Block& data);
void multiply(const Block& data, double factor);

// Writes level j of the table of the data into `out`: every packet folded with its neighbours and
// transformed. `scratch` is a block of the same shape, of images only. Nothing is done to emptiness.
Failure cosineLevel(const Block& data, std::uint32_t level, const Bells& bells, const Block& out,
                    const Block& scratch, Dct4& dct);

// Merges the coefficients of a basis without repeated rows; `work` holds them at first and `result`
// the data at last, both of one shape. Of a signal it polls before each packet.
Failure mergeCosines(const PacketList& basis, const Bells& bells, const Block& work, const Block& result,
                     const Poll& poll, Dct4& dct);

}  // namespace undula
