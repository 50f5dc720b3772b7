// dwt, dwts, dwti: the transform with periodic, symmetric and interval treatment of the ends, and the
// inverses idwt, idwts, idwti.
#include "dwt/data_argument.h"
#include "dwt/multilevel.h"
#include "filters/selection.h"
#include "frame/checks.h"
#include "frame/workers.h"

using namespace undula;

namespace {

constexpr int dataPosition = 1;
constexpr int levelPosition = 2;
constexpr int waveletPosition = 3;

Failure checkTransform(EfiCallContext* context, const BoundaryTreatment& boundary, const FilterBank& bank,
                       const aMatrix* data, const aComplex* levels) {
    if (auto failure = requireRealArray(context, data, dataPosition)) return failure;
    if (auto failure = requireReal(levels, levelPosition)) return failure;
    if (auto failure = requireLevelInRange(levels->re, levelPosition)) return failure;
    const Failure unsuitable = requireSuitable(boundary, bank, waveletPosition);
    if (boundary.waveletFirst && unsuitable) return unsuitable;
    if (!admitsSides(boundary, bank, data, asIndex(levels->re))) return {Code::InvalidLevel, levelPosition};
    return unsuitable;
}

Result<aMatrix*> transform(EfiCallContext* context, const BoundaryTreatment& boundary, Direction direction,
                           const aMatrix* data, const aComplex* levels, const WaveletArguments& wavelet) {
    const auto bank = selectWavelet(context, wavelet);
    if (!bank) return bank.failure();
    if (auto failure = checkTransform(context, boundary, *bank, data, levels)) return failure;
    const auto view = DataView::of(data);
    if (!view) return view.failure();
    auto result = newElements(view->block().rows, view->block().cols);
    if (!result) return Code::OutOfMemory;
    Workspace workspace;
    const Failure failure = transformLevels(boundary, *bank, view->block(), blockOf(data, result),
                                            asIndex(levels->re), direction, pollOf(context), workspace);
    if (failure) return stepFailure(failure, Code::InvalidLevel, levelPosition);
    return newMatrix(context, data->rows, data->cols, result);
}

}  // namespace

aMatrix* dwt(EfiCallContext* context, aMatrix* data, aComplex* levels, aMatrix* filter) {
    return toHost(context, transform(context, periodicBoundary, Direction::Forward, data, levels,
                                     {waveletPosition, filter}));
}

aMatrix* dwt(EfiCallContext* context, aMatrix* data, aComplex* levels, aMatrix* filter, aMatrix* offsets) {
    return toHost(context, transform(context, periodicBoundary, Direction::Forward, data, levels,
                                     {waveletPosition, filter, offsets}));
}

aMatrix* dwt(EfiCallContext* context, aMatrix* data, aComplex* levels, aMatrix* filter, aMatrix* offsets,
             aMatrix* flips) {
    return toHost(context, transform(context, periodicBoundary, Direction::Forward, data, levels,
                                     {waveletPosition, filter, offsets, flips}));
}

aMatrix* idwt(EfiCallContext* context, aMatrix* data, aComplex* levels, aMatrix* filter) {
    return toHost(context, transform(context, periodicBoundary, Direction::Inverse, data, levels,
                                     {waveletPosition, filter}));
}

aMatrix* idwt(EfiCallContext* context, aMatrix* data, aComplex* levels, aMatrix* filter, aMatrix* offsets) {
    return toHost(context, transform(context, periodicBoundary, Direction::Inverse, data, levels,
                                     {waveletPosition, filter, offsets}));
}

aMatrix* idwt(EfiCallContext* context, aMatrix* data, aComplex* levels, aMatrix* filter, aMatrix* offsets,
              aMatrix* flips) {
    return toHost(context, transform(context, periodicBoundary, Direction::Inverse, data, levels,
                                     {waveletPosition, filter, offsets, flips}));
}

aMatrix* dwts(EfiCallContext* context, aMatrix* data, aComplex* levels, aMatrix* filter) {
    return toHost(context, transform(context, symmetricBoundary, Direction::Forward, data, levels,
                                     {waveletPosition, filter}));
}

aMatrix* idwts(EfiCallContext* context, aMatrix* data, aComplex* levels, aMatrix* filter) {
    return toHost(context, transform(context, symmetricBoundary, Direction::Inverse, data, levels,
                                     {waveletPosition, filter}));
}

aMatrix* dwti(EfiCallContext* context, aMatrix* data, aComplex* levels, aMatrix* filter) {
    return toHost(context, transform(context, intervalBoundary, Direction::Forward, data, levels,
                                     {waveletPosition, filter}));
}

aMatrix* idwti(EfiCallContext* context, aMatrix* data, aComplex* levels, aMatrix* filter) {
    return toHost(context, transform(context, intervalBoundary, Direction::Inverse, data, levels,
                                     {waveletPosition, filter}));
}
