#include "frame/checks.h"

#include <cmath>

namespace undula {

Failure requireReal(const aComplex* scalar, int argument) {
    return scalar->im == 0.0 ? Failure() : Failure(text::mustBeReal, argument);
}

Failure requireRealArray(EfiCallContext* context, const aMatrix* matrix, int argument) {
    return isRealArray(context, matrix) ? Failure() : Failure(text::mustBeRealArray, argument);
}

Failure requireRealVector(EfiCallContext* context, const aMatrix* vector, int argument) {
    return isRealVector(context, vector) ? Failure() : Failure(text::mustBeRealVector, argument);
}

Failure requireWhole(double x, int argument) {
    return std::floor(x) == x ? Failure() : Failure(Code::MustBeInteger, argument);
}

Failure require32Bits(double x, Code outOfRange, int argument) {
    const bool inside = std::isgreaterequal(x, 0.0) && std::islessequal(x, 4294967295.0);
    return inside ? Failure() : Failure(outOfRange, argument);
}

Failure requireLevel(double x, int argument) {
    if (auto failure = requireWhole(x, argument)) return failure;
    return require32Bits(x, Code::InvalidLevel, argument);
}

Failure requireLevelInRange(double x, int argument) {
    if (auto failure = require32Bits(x, Code::InvalidLevel, argument)) return failure;
    return requireWhole(x, argument);
}

}  // namespace undula
