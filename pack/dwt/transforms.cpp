// dwt, dwts, dwti: the transform with periodic, symmetric and interval treatment of the ends, and the
// inverses idwt, idwts, idwti.
#include "dwt/data_argument.h"
#include "dwt/multilevel.h"
#include "filters/active_filter.h"
#include "filters/selection.h"
#include "frame/checks.h"
#include "frame/workers.h"

using namespace undula;

namespace {

constexpr int dataPosition = 1;
constexpr int levelPosition = 2;
constexpr int waveletPosition = 3;

Failure requireAdmittedLevel(const BoundaryTreatment& boundary, const aMatrix* data, std::uint32_t levels) {
    const bool admitted = admitsSides(boundary, ActiveFilter, data, levels);
    return admitted ? Failure() : Failure(Code::InvalidLevel, levelPosition);
}

Failure requireSuitableWavelet(const BoundaryTreatment& boundary) {
    return failureAt(refusalOf(boundary, ActiveFilter), waveletPosition);
}

Failure checkTransform(EfiCallContext* context, const BoundaryTreatment& boundary, const aMatrix* data,
                       const aComplex* levels) {
    if (auto failure = requireRealArray(context, data, dataPosition)) return failure;
    if (auto failure = requireReal(levels, levelPosition)) return failure;
    if (auto failure = requireLevelInRange(levels->re, levelPosition)) return failure;
    if (boundary.waveletFirst) {
        if (auto failure = requireSuitableWavelet(boundary)) return failure;
    }
    if (auto failure = requireAdmittedLevel(boundary, data, asIndex(levels->re))) return failure;
    return requireSuitableWavelet(boundary);
}

// Every level uses the wavelet selected here, whatever a poll of the host's may lead to.
aMatrix* transform(EfiCallContext* context, const BoundaryTreatment& boundary, Direction direction,
                   const aMatrix* data, const aComplex* levels, const WaveletArguments& wavelet) {
    if (auto failure = selectWavelet(context, wavelet)) return fail(context, failure);
    if (auto failure = checkTransform(context, boundary, data, levels)) return fail(context, failure);
    const FilterBank bank = ActiveFilter;
    auto result = copyOfElements(data);
    if (!result) return fail(context, outOfMemory());
    Workspace workspace;
    const Code code = transformLevels(boundary, bank, blockOf(data, result), asIndex(levels->re), direction,
                                      pollOf(context), workspace);
    if (auto failure = stepFailure(code, Code::InvalidLevel, levelPosition)) return fail(context, failure);
    return resultMatrix(context, data->rows, data->cols, result);
}

}  // namespace

aMatrix* dwt(EfiCallContext* context, aMatrix* data, aComplex* levels, aMatrix* filter) {
    return transform(context, periodicBoundary, Direction::Forward, data, levels, {waveletPosition, filter});
}

aMatrix* dwt(EfiCallContext* context, aMatrix* data, aComplex* levels, aMatrix* filter, aMatrix* offsets) {
    return transform(context, periodicBoundary, Direction::Forward, data, levels,
                     {waveletPosition, filter, offsets});
}

aMatrix* dwt(EfiCallContext* context, aMatrix* data, aComplex* levels, aMatrix* filter, aMatrix* offsets,
             aMatrix* flips) {
    return transform(context, periodicBoundary, Direction::Forward, data, levels,
                     {waveletPosition, filter, offsets, flips});
}

aMatrix* idwt(EfiCallContext* context, aMatrix* coefficients, aComplex* levels, aMatrix* filter) {
    return transform(context, periodicBoundary, Direction::Inverse, coefficients, levels,
                     {waveletPosition, filter});
}

aMatrix* idwt(EfiCallContext* context, aMatrix* coefficients, aComplex* levels, aMatrix* filter,
              aMatrix* offsets) {
    return transform(context, periodicBoundary, Direction::Inverse, coefficients, levels,
                     {waveletPosition, filter, offsets});
}

aMatrix* idwt(EfiCallContext* context, aMatrix* coefficients, aComplex* levels, aMatrix* filter,
              aMatrix* offsets, aMatrix* flips) {
    return transform(context, periodicBoundary, Direction::Inverse, coefficients, levels,
                     {waveletPosition, filter, offsets, flips});
}

aMatrix* dwts(EfiCallContext* context, aMatrix* data, aComplex* levels, aMatrix* filter) {
    return transform(context, symmetricBoundary, Direction::Forward, data, levels, {waveletPosition, filter});
}

aMatrix* idwts(EfiCallContext* context, aMatrix* coefficients, aComplex* levels, aMatrix* filter) {
    return transform(context, symmetricBoundary, Direction::Inverse, coefficients, levels,
                     {waveletPosition, filter});
}

aMatrix* dwti(EfiCallContext* context, aMatrix* data, aComplex* levels, aMatrix* filter) {
    return transform(context, intervalBoundary, Direction::Forward, data, levels, {waveletPosition, filter});
}

aMatrix* idwti(EfiCallContext* context, aMatrix* coefficients, aComplex* levels, aMatrix* filter) {
    return transform(context, intervalBoundary, Direction::Inverse, coefficients, levels,
                     {waveletPosition, filter});
}
