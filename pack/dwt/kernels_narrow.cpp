#define UNDULA_KERNELS narrow
#define UNDULA_LANES 2
#include "dwt/kernels.inc"
