// lct, cpt: local cosine tables with the user's bell and with the built-in one; ilct, icpt: their
// inverses.
#include <optional>

#include "cosine/host_fourier.h"
#include "cosine/local_cosine.h"
#include "dwt/data_argument.h"
#include "frame/checks.h"
#include "frame/halving.h"
#include "frame/user_function.h"
#include "frame/workers.h"
#include "packets/basis_argument.h"
#include "packets/table.h"

using namespace undula;

namespace {

constexpr int dataPosition = 1;
constexpr int levelPosition = 2;
constexpr int basisPosition = 3;

bool isSignal(const aMatrix* data) {
    return data->cols < 2;
}
bool isEmpty(const aMatrix* data) {
    return data->rows == 0 || data->cols == 0;
}

// Whether 2^levels divides the length of a signal, or both sides of an image.
bool dividesSides(const aMatrix* data, std::uint64_t levels) {
    const auto divides = [levels](int side) { return divisible(static_cast<std::uint64_t>(side), levels); };
    return divides(data->rows) && (data->cols == 1 || divides(data->cols));
}

// A segment of the deepest level must hold both halves of the bell; emptiness has one level.
Failure requireHalves(const aMatrix* data, std::uint32_t level) {
    const bool admitted = isEmpty(data) ? level == 0 : dividesSides(data, level + std::uint64_t{1});
    return admitted ? Failure() : Failure(Code::InvalidLevel, levelPosition);
}

Failure checkForward(EfiCallContext* context, const aMatrix* data, const aComplex* level) {
    if (auto failure = requireRealArray(context, data, dataPosition)) return failure;
    if (auto failure = requireReal(level, levelPosition)) return failure;
    if (auto failure = requireLevelInRange(level->re, levelPosition)) return failure;
    return requireHalves(data, asIndex(level->re));
}

std::uint64_t halfLength(int side, std::uint32_t level) {
    return level >= 63 ? 0 : static_cast<std::uint64_t>(side) >> (level + 1);
}

// Half-lengths of the bells of a call.
struct HalfLengths {
    std::uint64_t down;
    std::uint64_t along;

    // An image with fewer columns than rows has a bell of its own along the rows.
    HalfLengths(const aMatrix* data, std::uint32_t level)
        : down(halfLength(data->rows, level)),
          along(data->cols < data->rows ? halfLength(data->cols, level) : down) {}
};

// Samples the user's bell, or the built-in one, for all directions of the data.
Failure sampleBells(EfiCallContext* context, const aMatrix* data, std::uint32_t level, aLambda* function,
                    Bells& bells) {
    if (isEmpty(data)) return {};
    std::optional<double_to_double_lambda> bell;
    if (function != nullptr) {
        bell.emplace(context, function);
        if (!bell->rooted()) return outOfMemory();
    }
    double_to_double_func* user = bell ? &*bell : nullptr;
    const HalfLengths lengths(data, level);
    bells.separate = !isSignal(data) && lengths.along != lengths.down;
    if (!sampleBell(lengths.down, user, bells.down)) return outOfMemory();
    return !bells.separate || sampleBell(lengths.along, user, bells.along) ? Failure() : outOfMemory();
}

// A signal polls once, an image before each level. Without a function the bell is the built-in one.
aVector* cosineTable(EfiCallContext* context, const aMatrix* data, const aComplex* level, aLambda* bell) {
    if (auto failure = checkForward(context, data, level)) return fail(context, failure);
    const std::uint32_t levels = asIndex(level->re);
    NewTable table;
    const auto copy = copyOfElements(data);
    const auto scratch = isSignal(data) ? Array<double>() : copyOfElements(data);
    const bool allocated = copy && (isSignal(data) || scratch);
    if (!allocated || !table.allocate(data->rows, data->cols, levels)) return fail(context, outOfMemory());
    Bells bells;
    if (auto failure = sampleBells(context, data, levels, bell, bells)) return fail(context, failure);
    if (isSignal(data) && interrupted(context)) return fail(context, interruption());

    const double scale = makeRoom(blockOf(data, copy));
    Dct4 dct(fourierOf(context));
    for (std::uint32_t j = 0; j <= levels; ++j) {
        if (!isSignal(data) && interrupted(context)) return fail(context, interruption());
        const Code code =
            cosineLevel(blockOf(data, copy), j, bells, table.level(j), blockOf(data, scratch), dct);
        if (auto failure = failureAt(code, 0)) return fail(context, failure);
        multiply(table.level(j), scale);
    }
    return table.result(context);
}

// What is asked of a call of the inverse.
struct Inverse {
    EfiCallContext* context;
    const aMatrix* coefficients;
    const aComplex* level;
    const aMatrix* basis;
    aLambda* bell;
};

Failure checkSizes(const Inverse& call, const Basis& basis) {
    if (auto failure = requireLevel(call.level->re, levelPosition)) return failure;
    if (!dividesSides(call.coefficients, asIndex(call.level->re))) return {Code::InvalidLevel, levelPosition};
    if (dividesSides(call.coefficients, basis.depth())) return {};
    return {isSignal(call.coefficients) ? Code::InvalidLevel : Code::InvalidLevelInBasis, basisPosition};
}

// The shortest packet must hold both halves of the bell.
Failure requireLongPackets(const Inverse& call, const Basis& basis) {
    const HalfLengths lengths(call.coefficients, asIndex(call.level->re));
    const auto holds = [&](int side, std::uint64_t half) {
        return static_cast<std::uint64_t>(side) >> basis.depth() >= 2 * half;
    };
    const bool valid = holds(call.coefficients->rows, lengths.down) &&
                       (isSignal(call.coefficients) || holds(call.coefficients->cols, lengths.along));
    return valid ? Failure() : Failure(Code::InvalidLevelInBasis, basisPosition);
}

Failure checkInverse(const Inverse& call, Basis& basis) {
    if (auto failure = requireRealArray(call.context, call.coefficients, dataPosition)) return failure;
    if (auto failure = requireReal(call.level, levelPosition)) return failure;
    if (auto failure = requireRealArray(call.context, call.basis, basisPosition)) return failure;
    if (auto failure = requireBasisFor(call.coefficients, call.basis, basisPosition)) return failure;
    if (auto failure = readBasis(call.basis, basis)) return failure;
    if (auto failure = failureAt(checkEntries(basis), basisPosition)) return failure;
    if (auto failure = checkSizes(call, basis)) return failure;
    PacketList splits;
    if (auto failure = failureAt(findSplits(basis, splits), basisPosition)) return failure;
    return requireLongPackets(call, basis);
}

aMatrix* mergeFromCosines(const Inverse& call) {
    Basis basis;
    if (auto failure = checkInverse(call, basis)) return fail(call.context, failure);
    if (!removeRepeats(basis.rows)) return fail(call.context, outOfMemory());
    const aMatrix* coefficients = call.coefficients;
    const auto work = copyOfElements(coefficients);
    auto result = copyOfElements(coefficients);
    if (!work || !result) return fail(call.context, outOfMemory());
    Bells bells;
    const std::uint32_t level = asIndex(call.level->re);
    if (auto failure = sampleBells(call.context, coefficients, level, call.bell, bells))
        return fail(call.context, failure);

    const double scale = makeRoom(blockOf(coefficients, work));
    Dct4 dct(fourierOf(call.context));
    const Code code = mergeCosines(basis.rows, bells, blockOf(coefficients, work),
                                   blockOf(coefficients, result), pollOf(call.context), dct);
    if (auto failure = failureAt(code, 0)) return fail(call.context, failure);
    multiply(blockOf(coefficients, result), scale);
    return resultMatrix(call.context, coefficients->rows, coefficients->cols, result);
}

}  // namespace

aVector* cpt(EfiCallContext* context, aMatrix* data, aComplex* level) {
    return cosineTable(context, data, level, nullptr);
}

aVector* lct(EfiCallContext* context, aMatrix* data, aComplex* level, aLambda* bell) {
    return cosineTable(context, data, level, bell);
}

aMatrix* icpt(EfiCallContext* context, aMatrix* coefficients, aComplex* level, aMatrix* basis) {
    return mergeFromCosines({context, coefficients, level, basis, nullptr});
}

aMatrix* ilct(EfiCallContext* context, aMatrix* coefficients, aComplex* level, aMatrix* basis,
              aLambda* bell) {
    return mergeFromCosines({context, coefficients, level, basis, bell});
}
