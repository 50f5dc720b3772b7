// lct, cpt: local cosine tables with the user's bell and with the built-in one; ilct, icpt: their
// inverses.
#include <optional>

#include "cosine/host_fourier.h"
#include "cosine/local_cosine.h"
#include "dwt/data_argument.h"
#include "frame/checks.h"
#include "frame/integers.h"
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

// Whether 2^levels divides the length of a signal, or both sides of an image.
bool dividesSides(const aMatrix* data, std::uint64_t levels) {
    return holdsForSides(data, [levels](std::uint64_t side) { return divisible(side, levels); });
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
Result<Bells> sampleBells(EfiCallContext* context, const aMatrix* data, std::uint32_t level,
                          aLambda* function) {
    Bells bells;
    if (isEmpty(data)) return bells;
    std::optional<double_to_double_lambda> bell;
    if (function != nullptr) {
        bell.emplace(context, function);
        if (!bell->rooted()) return Code::OutOfMemory;
    }
    double_to_double_func* user = bell ? &*bell : nullptr;
    const HalfLengths lengths(data, level);
    bells.separate = !isSignal(data) && lengths.along != lengths.down;
    if (!sampleBell(lengths.down, user, bells.down)) return Code::OutOfMemory;
    if (bells.separate && !sampleBell(lengths.along, user, bells.along)) return Code::OutOfMemory;
    return bells;
}

// A signal polls once, an image before each level. Without a function the bell is the built-in one.
Result<aMatrix*> cosineTable(EfiCallContext* context, const aMatrix* data, const aComplex* level,
                             aLambda* bell) {
    if (auto failure = checkForward(context, data, level)) return failure;
    const std::uint32_t levels = asIndex(level->re);
    const auto copy = copyOfElements(data);
    const auto scratch = isSignal(data) ? Array<double>() : copyOfElements(data);
    if (!copy || (!isSignal(data) && !scratch)) return Code::OutOfMemory;
    auto table = newTable(data->rows, data->cols, levels);
    if (!table) return table.failure();
    const auto bells = sampleBells(context, data, levels, bell);
    if (!bells) return bells.failure();
    if (isSignal(data) && interrupted(context)) return Code::Interrupted;

    const double scale = makeRoom(blockOf(data, copy));
    Dct4 dct(fourierOf(context));
    for (std::uint32_t j = 0; j <= levels; ++j) {
        if (!isSignal(data) && interrupted(context)) return Code::Interrupted;
        if (auto failure =
                cosineLevel(blockOf(data, copy), j, *bells, table->level(j), blockOf(data, scratch), dct))
            return failure;
        multiply(table->level(j), scale);
    }
    return tableValue(context, *table);
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

Result<Basis> readInverseBasis(const Inverse& call) {
    if (auto failure = requireRealArray(call.context, call.coefficients, dataPosition)) return failure;
    if (auto failure = requireReal(call.level, levelPosition)) return failure;
    if (auto failure = requireRealArray(call.context, call.basis, basisPosition)) return failure;
    if (auto failure = requireBasisFor(call.coefficients, call.basis, basisPosition)) return failure;
    auto basis = readBasis(call.basis);
    if (!basis) return basis;
    if (auto failure = checkEntries(*basis)) return failure.at(basisPosition);
    if (auto failure = checkSizes(call, *basis)) return failure;
    const auto splits = findSplits(*basis);
    if (!splits) return splits.failure().at(basisPosition);
    if (auto failure = requireLongPackets(call, *basis)) return failure;
    return basis;
}

Result<aMatrix*> mergeFromCosines(const Inverse& call) {
    auto basis = readInverseBasis(call);
    if (!basis) return basis.failure();
    const aMatrix* coefficients = call.coefficients;
    const auto work = copyOfElements(coefficients);
    auto result = copyOfElements(coefficients);
    if (!removeRepeats(basis->rows) || !work || !result) return Code::OutOfMemory;
    const auto bells = sampleBells(call.context, coefficients, asIndex(call.level->re), call.bell);
    if (!bells) return bells.failure();

    const double scale = makeRoom(blockOf(coefficients, work));
    Dct4 dct(fourierOf(call.context));
    if (auto failure = mergeCosines(basis->rows, *bells, blockOf(coefficients, work),
                                    blockOf(coefficients, result), pollOf(call.context), dct))
        return failure;
    multiply(blockOf(coefficients, result), scale);
    return newMatrix(call.context, coefficients->rows, coefficients->cols, result);
}

}  // namespace

aVector* cpt(EfiCallContext* context, aMatrix* data, aComplex* level) {
    return toHost(context, cosineTable(context, data, level, nullptr));
}

aVector* lct(EfiCallContext* context, aMatrix* data, aComplex* level, aLambda* bell) {
    return toHost(context, cosineTable(context, data, level, bell));
}

aMatrix* icpt(EfiCallContext* context, aMatrix* coefficients, aComplex* level, aMatrix* basis) {
    return toHost(context, mergeFromCosines({context, coefficients, level, basis, nullptr}));
}

aMatrix* ilct(EfiCallContext* context, aMatrix* coefficients, aComplex* level, aMatrix* basis,
              aLambda* bell) {
    return toHost(context, mergeFromCosines({context, coefficients, level, basis, bell}));
}
