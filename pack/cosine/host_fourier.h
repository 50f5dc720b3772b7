// The host's inverse Fourier transform.
#pragma once

#include "cosine/dct4.h"
#include "efi/host.h"

namespace undula {

// Valid for the call of the context.
FourierService fourierOf(EfiCallContext* context);

}  // namespace undula
