// The sines and cosines of the module, in place of the C library's: computed in 113 bits and
// rounded. All but the rarest are the nearest numbers, as they are in the C library of other builds.

#include <cmath>

extern "C" {

double sin(double x) {
    return static_cast<double>(std::sin(static_cast<long double>(x)));
}

double cos(double x) {
    return static_cast<double>(std::cos(static_cast<long double>(x)));
}
}
