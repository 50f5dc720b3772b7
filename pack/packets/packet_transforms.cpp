// wpt, wpts, wpti: packet tables, or the coefficients of one basis, with periodic, symmetric and
// interval treatment of the ends; and the inverses iwpt, iwpts, iwpti.
#include "dwt/data_argument.h"
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

Failure checkLevel(const PacketCall& call, const FilterBank& bank, const aComplex* level) {
    if (auto failure = requireRealArray(call.context, call.data, dataPosition)) return failure;
    if (auto failure = requireReal(level, formPosition)) return failure;
    if (auto failure = requireLevelInRange(level->re, formPosition)) return failure;
    if (!admitsSides(call.boundary, bank, call.data, asIndex(level->re)))
        return {Code::InvalidLevel, formPosition};
    return requireSuitable(call.boundary, bank, waveletPosition);
}

// A signal's table polls before each level, an image's once.
Result<aMatrix*> packetTable(const PacketCall& call, const FilterBank& bank, const aComplex* level) {
    if (auto failure = checkLevel(call, bank, level)) return failure;
    const std::uint32_t levels = asIndex(level->re);
    auto table = newTable(call.data->rows, call.data->cols, levels);
    if (!table) return table.failure();
    if (interrupted(call.context)) return Code::Interrupted;
    copyElements(call.data, table->level(0).origin);
    Workspace workspace;
    Block blocks[mostLevels];
    for (std::uint32_t j = 0; j <= levels; ++j) blocks[j] = table->level(j);
    const Poll poll = call.data->cols == 1 ? pollOf(call.context) : Poll();
    if (auto failure = splitIntoTable(call.boundary, bank, blocks, levels, poll, workspace))
        return stepFailure(failure, Code::InvalidLevel, formPosition);
    return tableValue(call.context, *table);
}

Failure requireAdmittedDepth(const PacketCall& call, const FilterBank& bank, const Basis& basis) {
    const bool admitted = admitsSides(call.boundary, bank, call.data, basis.depth());
    return admitted ? Failure() : Failure(Code::InvalidLevelInBasis, formPosition);
}

// Of a signal the depth is looked at before the entries, of an image after them.
Failure checkDepthAndEntries(const PacketCall& call, const FilterBank& bank, const Basis& basis) {
    const bool isSignal = basis.dimensions == 1;
    const Failure tooDeep = requireAdmittedDepth(call, bank, basis);
    if (isSignal && tooDeep) return tooDeep;
    if (auto failure = checkEntries(basis)) return failure.at(formPosition);
    return tooDeep;
}

// What is split on the way to the basis, or merged on the way back.
Result<PacketList> readSplits(const PacketCall& call, const FilterBank& bank, const aMatrix* matrix) {
    if (auto failure = requireRealArray(call.context, call.data, dataPosition)) return failure;
    if (auto failure = requireRealArray(call.context, matrix, formPosition)) return failure;
    if (auto failure = requireBasisFor(call.data, matrix, formPosition)) return failure;
    const auto basis = readBasis(matrix);
    if (!basis) return basis.failure();
    if (auto failure = checkDepthAndEntries(call, bank, *basis)) return failure;
    auto splits = findSplits(*basis);
    if (!splits) return splits.failure().at(formPosition);
    if (auto failure = requireSuitable(call.boundary, bank, waveletPosition)) return failure;
    return splits;
}

using PacketTransform = Failure(const BoundaryTreatment& boundary, const FilterBank& bank, const Block& data,
                                const PacketList& splits, const Poll& poll, Workspace& workspace);

// Transforms a copy of the data along the splits of a basis.
Result<aMatrix*> transformPackets(const PacketCall& call, const FilterBank& bank, PacketTransform* transform,
                                  const PacketList& splits) {
    auto result = copyOfElements(call.data);
    if (!result) return Code::OutOfMemory;
    Workspace workspace;
    const Failure failure =
        transform(call.boundary, bank, blockOf(call.data, result), splits, pollOf(call.context), workspace);
    if (failure) return stepFailure(failure, Code::InvalidLevelInBasis, formPosition);
    return newMatrix(call.context, call.data->rows, call.data->cols, result);
}

Result<aMatrix*> splitIntoBasis(const PacketCall& call, const FilterBank& bank, const aMatrix* basis) {
    const auto splits = readSplits(call, bank, basis);
    if (!splits) return splits.failure();
    if (interrupted(call.context)) return Code::Interrupted;
    return transformPackets(call, bank, splitPackets, *splits);
}

Result<aMatrix*> mergeFromBasis(const PacketCall& call, const aMatrix* basis) {
    const auto bank = selectWavelet(call.context, call.wavelet);
    if (!bank) return bank.failure();
    const auto splits = readSplits(call, *bank, basis);
    if (!splits) return splits.failure();
    return transformPackets(call, *bank, mergePackets, *splits);
}

// A scalar asks for the table, an array for the coefficients of a basis.
Result<aMatrix*> analysePackets(const PacketCall& call, const Anyval* levelOrBasis) {
    const auto bank = selectWavelet(call.context, call.wavelet);
    if (!bank) return bank.failure();
    switch (tagOf(levelOrBasis)) {
        case TagScalar:
            return packetTable(call, *bank, static_cast<const aComplex*>(levelOrBasis));
        case TagArray:
            return splitIntoBasis(call, *bank, static_cast<const aMatrix*>(levelOrBasis));
        case TagFunction:
        case TagFunctionAlt:
        case TagUnsupported:
            return Failure(Code::IllegalContext, formPosition);
        default:
            return Failure(Code::MustBeScalarOrArray, formPosition);
    }
}

}  // namespace

aMatrix* wpt(EfiCallContext* context, aMatrix* data, Anyval* levelOrBasis, aMatrix* filter) {
    return toHost(context,
                  analysePackets({context, periodicBoundary, data, {waveletPosition, filter}}, levelOrBasis));
}

aMatrix* wpt(EfiCallContext* context, aMatrix* data, Anyval* levelOrBasis, aMatrix* filter,
             aMatrix* offsets) {
    return toHost(
        context,
        analysePackets({context, periodicBoundary, data, {waveletPosition, filter, offsets}}, levelOrBasis));
}

aMatrix* wpt(EfiCallContext* context, aMatrix* data, Anyval* levelOrBasis, aMatrix* filter, aMatrix* offsets,
             aMatrix* flips) {
    return toHost(context,
                  analysePackets({context, periodicBoundary, data, {waveletPosition, filter, offsets, flips}},
                                 levelOrBasis));
}

aMatrix* iwpt(EfiCallContext* context, aMatrix* coefficients, aMatrix* basis, aMatrix* filter) {
    return toHost(
        context, mergeFromBasis({context, periodicBoundary, coefficients, {waveletPosition, filter}}, basis));
}

aMatrix* iwpt(EfiCallContext* context, aMatrix* coefficients, aMatrix* basis, aMatrix* filter,
              aMatrix* offsets) {
    return toHost(
        context,
        mergeFromBasis({context, periodicBoundary, coefficients, {waveletPosition, filter, offsets}}, basis));
}

aMatrix* iwpt(EfiCallContext* context, aMatrix* coefficients, aMatrix* basis, aMatrix* filter,
              aMatrix* offsets, aMatrix* flips) {
    return toHost(
        context,
        mergeFromBasis({context, periodicBoundary, coefficients, {waveletPosition, filter, offsets, flips}},
                       basis));
}

aMatrix* wpts(EfiCallContext* context, aMatrix* data, Anyval* levelOrBasis, aMatrix* filter) {
    return toHost(
        context, analysePackets({context, symmetricBoundary, data, {waveletPosition, filter}}, levelOrBasis));
}

aMatrix* iwpts(EfiCallContext* context, aMatrix* coefficients, aMatrix* basis, aMatrix* filter) {
    return toHost(context, mergeFromBasis(
                               {context, symmetricBoundary, coefficients, {waveletPosition, filter}}, basis));
}

aMatrix* wpti(EfiCallContext* context, aMatrix* data, Anyval* levelOrBasis, aMatrix* filter) {
    return toHost(context,
                  analysePackets({context, intervalBoundary, data, {waveletPosition, filter}}, levelOrBasis));
}

aMatrix* iwpti(EfiCallContext* context, aMatrix* coefficients, aMatrix* basis, aMatrix* filter) {
    return toHost(
        context, mergeFromBasis({context, intervalBoundary, coefficients, {waveletPosition, filter}}, basis));
}
