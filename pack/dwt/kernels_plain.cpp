#define UNDULA_KERNELS plain
#define UNDULA_LANES 1
#include "dwt/kernels.inc"
