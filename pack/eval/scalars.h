// Scalar arguments and results of the evaluators.
#pragma once

#include "frame/checks.h"

namespace undula {

// "must be real" about the first of the scalars, from position 1 on, that is not.
template <class... Scalars>
Failure requireRealScalars(const Scalars*... scalars) {
    int position = 0;
    for (const aComplex* scalar : {scalars...}) {
        if (auto failure = requireReal(scalar, ++position)) return failure;
    }
    return {};
}

// The scalar of a worker's result, or the error "out of memory".
inline aComplex* resultScalar(EfiCallContext* context, double value) {
    aComplex* scalar = newScalar(context, value);
    return scalar != nullptr ? scalar : fail(context, outOfMemory());
}

}  // namespace undula
