#define UNDULA_KERNELS avx512
#define UNDULA_LANES 8
#include "dwt/kernels.inc"
