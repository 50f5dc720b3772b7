// dwt, dwts, dwti: the transform with periodic, symmetric and interval treatment of the ends, and the
// inverses idwt, idwts, idwti.
#include "dwt/multilevel.h"
#include "filters/active_filter.h"
#include "filters/selection.h"
#include "frame/checks.h"
#include "frame/halving.h"
#include "frame/workers.h"

using namespace undula;

namespace {

constexpr int dataPosition = 1;
constexpr int levelPosition = 2;
constexpr int waveletPosition = 3;

Failure requireAdmittedLevel(const BoundaryTreatment& boundary, const aMatrix* data, std::uint32_t levels) {
    const auto admits = [&](int side) {
        return boundary.admits(ActiveFilter, static_cast<std::uint64_t>(side), levels);
    };
    const bool admitted = admits(data->rows) && (data->cols == 1 || admits(data->cols));
    return admitted ? Failure() : Failure(Code::InvalidLevel, levelPosition);
}

Failure requireSuitableWavelet(const BoundaryTreatment& boundary) {
    const Code refusal = refusalOf(boundary, ActiveFilter);
    return refusal == Code::None ? Failure() : Failure(refusal, waveletPosition);
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

// The failure of a step, as the call reports it.
Failure stepFailure(Code code) {
    switch (code) {
        case Code::None:
            return {};
        case Code::InvalidLevel:
            return {code, levelPosition};
        case Code::OutOfMemory:
        case Code::Interrupted:
            return {code, 0};
        default:
            return {Code::Unknown, 0};
    }
}

aMatrix* transform(EfiCallContext* context, const BoundaryTreatment& boundary, Direction direction,
                   const aMatrix* data, const aComplex* levels, const WaveletArguments& wavelet) {
    if (auto failure = selectWavelet(context, wavelet)) return fail(context, failure);
    if (auto failure = checkTransform(context, boundary, data, levels)) return fail(context, failure);
    auto result = copyOfElements(data);
    if (!result) return fail(context, outOfMemory());
    const Block block = {result.data(), data->rows, static_cast<std::uint32_t>(data->rows),
                         static_cast<std::uint32_t>(data->cols)};
    Workspace workspace;
    const Code code = transformLevels(boundary, ActiveFilter, block, asIndex(levels->re), direction,
                                      pollOf(context), workspace);
    if (auto failure = stepFailure(code)) return fail(context, failure);
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
