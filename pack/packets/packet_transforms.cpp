// wpt, wpts, wpti: packet tables, or the coefficients of one basis, with periodic, symmetric and
// interval treatment of the ends; and the inverses iwpt, iwpts, iwpti.
#include <algorithm>

#include "dwt/data_argument.h"
#include "filters/active_filter.h"
#include "filters/selection.h"
#include "frame/checks.h"
#include "frame/workers.h"
#include "packets/basis_argument.h"
#include "packets/packet_steps.h"
#include "packets/table.h"

using namespace undula;

namespace {

constexpr int dataPosition = 1;
constexpr int formPosition = 2;  // the level or the basis
constexpr int waveletPosition = 3;

struct PacketCall {
    EfiCallContext* context;
    const BoundaryTreatment& boundary;
    const aMatrix* data;
    WaveletArguments wavelet;
};

Failure requireSuitableWavelet(const PacketCall& call) {
    return failureAt(refusalOf(call.boundary, ActiveFilter), waveletPosition);
}

Failure checkLevel(const PacketCall& call, const aComplex* level) {
    if (auto failure = requireRealArray(call.context, call.data, dataPosition)) return failure;
    if (auto failure = requireReal(level, formPosition)) return failure;
    if (auto failure = requireLevelInRange(level->re, formPosition)) return failure;
    if (!admitsSides(call.boundary, ActiveFilter, call.data, asIndex(level->re))) {
        return {Code::InvalidLevel, formPosition};
    }
    return requireSuitableWavelet(call);
}

// A signal's table polls before each level, an image's once.
aVector* packetTable(const PacketCall& call, const aComplex* level) {
    if (auto failure = checkLevel(call, level)) return fail(call.context, failure);
    const std::uint32_t levels = asIndex(level->re);
    NewTable table;
    if (!table.allocate(call.data->rows, call.data->cols, levels)) return fail(call.context, outOfMemory());
    if (interrupted(call.context)) return fail(call.context, interruption());
    copyElements(call.data, table.level(0).origin);
    const FilterBank bank = ActiveFilter;
    Workspace workspace;
    for (std::uint32_t j = 1; j <= levels; ++j) {
        if (call.data->cols == 1 && interrupted(call.context)) return fail(call.context, interruption());
        std::copy_n(table.level(j - 1).origin, table.size(), table.level(j).origin);
        const Code code = splitLevel(call.boundary, bank, table.level(j), j - 1, workspace);
        if (auto failure = stepFailure(code, Code::InvalidLevel, formPosition))
            return fail(call.context, failure);
    }
    return table.result(call.context);
}

Failure requireAdmittedDepth(const PacketCall& call, const Basis& basis) {
    const bool admitted = admitsSides(call.boundary, ActiveFilter, call.data, basis.depth());
    return admitted ? Failure() : Failure(Code::InvalidLevelInBasis, formPosition);
}

// Of a signal the depth is looked at before the entries, of an image after them.
Failure checkDepthAndEntries(const PacketCall& call, const Basis& basis) {
    const bool isSignal = basis.dimensions == 1;
    if (isSignal) {
        if (auto failure = requireAdmittedDepth(call, basis)) return failure;
    }
    if (auto failure = failureAt(checkEntries(basis), formPosition)) return failure;
    return isSignal ? Failure() : requireAdmittedDepth(call, basis);
}

Failure checkBasis(const PacketCall& call, const aMatrix* matrix, PacketList& splits) {
    if (auto failure = requireRealArray(call.context, call.data, dataPosition)) return failure;
    if (auto failure = requireRealArray(call.context, matrix, formPosition)) return failure;
    if (auto failure = requireBasisFor(call.data, matrix, formPosition)) return failure;
    Basis basis;
    if (auto failure = readBasis(matrix, basis)) return failure;
    if (auto failure = checkDepthAndEntries(call, basis)) return failure;
    if (auto failure = failureAt(findSplits(basis, splits), formPosition)) return failure;
    return requireSuitableWavelet(call);
}

using PacketTransform = Code(const BoundaryTreatment& boundary, const FilterBank& bank, const Block& data,
                             const PacketList& splits, const Poll& poll, Workspace& workspace);

// Transforms a copy of the data along the splits of a basis. Every level uses the wavelet selected
// now, whatever a poll of the host's may lead to.
aMatrix* transformPackets(const PacketCall& call, PacketTransform* transform, const PacketList& splits) {
    const FilterBank bank = ActiveFilter;
    auto result = copyOfElements(call.data);
    if (!result) return fail(call.context, outOfMemory());
    Workspace workspace;
    const Code code =
        transform(call.boundary, bank, blockOf(call.data, result), splits, pollOf(call.context), workspace);
    if (auto failure = stepFailure(code, Code::InvalidLevelInBasis, formPosition))
        return fail(call.context, failure);
    return resultMatrix(call.context, call.data->rows, call.data->cols, result);
}

aMatrix* splitIntoBasis(const PacketCall& call, const aMatrix* basis) {
    PacketList splits;
    if (auto failure = checkBasis(call, basis, splits)) return fail(call.context, failure);
    if (interrupted(call.context)) return fail(call.context, interruption());
    return transformPackets(call, splitPackets, splits);
}

aMatrix* mergeFromBasis(const PacketCall& call, const aMatrix* basis) {
    if (auto failure = selectWavelet(call.context, call.wavelet)) return fail(call.context, failure);
    PacketList splits;
    if (auto failure = checkBasis(call, basis, splits)) return fail(call.context, failure);
    return transformPackets(call, mergePackets, splits);
}

// A scalar asks for the table, an array for the coefficients of a basis.
aMatrix* analysePackets(const PacketCall& call, const Anyval* levelOrBasis) {
    if (auto failure = selectWavelet(call.context, call.wavelet)) return fail(call.context, failure);
    switch (tagOf(levelOrBasis)) {
        case TagScalar:
            return packetTable(call, static_cast<const aComplex*>(levelOrBasis));
        case TagArray:
            return splitIntoBasis(call, static_cast<const aMatrix*>(levelOrBasis));
        case TagFunction:
        case TagFunctionAlt:
        case TagUnsupported:
            return fail(call.context, {"illegal context", formPosition});
        default:
            return fail(call.context, {"EfiMustBeScalarOrArray", formPosition});
    }
}

}  // namespace

aMatrix* wpt(EfiCallContext* context, aMatrix* data, Anyval* levelOrBasis, aMatrix* filter) {
    return analysePackets({context, periodicBoundary, data, {waveletPosition, filter}}, levelOrBasis);
}

aMatrix* wpt(EfiCallContext* context, aMatrix* data, Anyval* levelOrBasis, aMatrix* filter,
             aMatrix* offsets) {
    return analysePackets({context, periodicBoundary, data, {waveletPosition, filter, offsets}},
                          levelOrBasis);
}

aMatrix* wpt(EfiCallContext* context, aMatrix* data, Anyval* levelOrBasis, aMatrix* filter, aMatrix* offsets,
             aMatrix* flips) {
    return analysePackets({context, periodicBoundary, data, {waveletPosition, filter, offsets, flips}},
                          levelOrBasis);
}

aMatrix* iwpt(EfiCallContext* context, aMatrix* coefficients, aMatrix* basis, aMatrix* filter) {
    return mergeFromBasis({context, periodicBoundary, coefficients, {waveletPosition, filter}}, basis);
}

aMatrix* iwpt(EfiCallContext* context, aMatrix* coefficients, aMatrix* basis, aMatrix* filter,
              aMatrix* offsets) {
    return mergeFromBasis({context, periodicBoundary, coefficients, {waveletPosition, filter, offsets}},
                          basis);
}

aMatrix* iwpt(EfiCallContext* context, aMatrix* coefficients, aMatrix* basis, aMatrix* filter,
              aMatrix* offsets, aMatrix* flips) {
    return mergeFromBasis(
        {context, periodicBoundary, coefficients, {waveletPosition, filter, offsets, flips}}, basis);
}

aMatrix* wpts(EfiCallContext* context, aMatrix* data, Anyval* levelOrBasis, aMatrix* filter) {
    return analysePackets({context, symmetricBoundary, data, {waveletPosition, filter}}, levelOrBasis);
}

aMatrix* iwpts(EfiCallContext* context, aMatrix* coefficients, aMatrix* basis, aMatrix* filter) {
    return mergeFromBasis({context, symmetricBoundary, coefficients, {waveletPosition, filter}}, basis);
}

aMatrix* wpti(EfiCallContext* context, aMatrix* data, Anyval* levelOrBasis, aMatrix* filter) {
    return analysePackets({context, intervalBoundary, data, {waveletPosition, filter}}, levelOrBasis);
}

aMatrix* iwpti(EfiCallContext* context, aMatrix* coefficients, aMatrix* basis, aMatrix* filter) {
    return mergeFromBasis({context, intervalBoundary, coefficients, {waveletPosition, filter}}, basis);
}
