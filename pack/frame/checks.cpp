#include "frame/checks.h"

namespace undula {

namespace {

Failure require(bool held, Code otherwise, int argument) {
    return held ? Failure() : Failure(otherwise, argument);
}

}  // namespace

Failure requireReal(const aComplex* scalar, int argument) {
    return require(scalar->im == 0.0, Code::MustBeReal, argument);
}

Failure requireRealArray(EfiCallContext* context, const aMatrix* matrix, int argument) {
    return require(isRealArray(context, matrix), Code::MustBeRealArray, argument);
}

Failure requireRealVector(EfiCallContext* context, const aMatrix* vector, int argument) {
    const bool isColumn = tagOf(vector) == TagArray && vector->cols == 1;
    return require(isColumn && isRealArray(context, vector), Code::MustBeRealVector, argument);
}

Failure requireWhole(double x, int argument) {
    return require(isWhole(x), Code::MustBeInteger, argument);
}

Failure require32Bits(double x, Code outOfRange, int argument) {
    return require(std::isgreaterequal(x, 0.0) && std::islessequal(x, largest32Bits), outOfRange, argument);
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
