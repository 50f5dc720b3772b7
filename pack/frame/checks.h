// Checks that workers share. Each returns the failure of the argument at the given position, or none.
// Comparisons are quiet: a NaN fails a check without raising a floating-point fault.
#pragma once

#include <cstdint>

#include "frame/errors.h"
#include "frame/host_services.h"
#include "frame/matrices.h"
#include "frame/numbers.h"

namespace undula {

// "must be real".
Failure requireReal(const aComplex* scalar, int argument);

// The same about the first of the scalars, from position `first` on, that is not real.
template <class... Scalars>
Failure requireRealFrom(int first, const Scalars*... scalars) {
    for (const aComplex* scalar : {scalars...}) {
        if (auto failure = requireReal(scalar, first++)) return failure;
    }
    return {};
}

// "must be real array", "must be real vector".
Failure requireRealArray(EfiCallContext* context, const aMatrix* matrix, int argument);
Failure requireRealVector(EfiCallContext* context, const aMatrix* vector, int argument);

// "must be integer".
Failure requireWhole(double x, int argument);

// The given error unless 0 <= x <= 4294967295.
Failure require32Bits(double x, Code outOfRange, int argument);

// A level: "must be integer" first, then "invalid level".
Failure requireLevel(double x, int argument);

// A level as the transforms check it: "invalid level" first, then "must be integer".
Failure requireLevelInRange(double x, int argument);

// A checked level or index as an integer; truncates towards zero.
inline std::uint32_t asIndex(double checked) {
    return static_cast<std::uint32_t>(checked);
}

}  // namespace undula
