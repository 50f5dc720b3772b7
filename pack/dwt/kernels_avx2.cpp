#define UNDULA_KERNELS avx2
#define UNDULA_LANES 4
#include "dwt/kernels.inc"
