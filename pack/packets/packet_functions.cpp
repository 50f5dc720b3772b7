// evaltbl, evalbs: a user function of every packet of a table or of a basis, as a list.
// applytbl, applybs: every packet replaced by a user function of it.
#include <algorithm>

#include "dwt/data_argument.h"
#include "frame/checks.h"
#include "frame/floating_point.h"
#include "frame/halving.h"
#include "frame/workers.h"
#include "packets/basis_argument.h"
#include "packets/packet_geometry.h"
#include "packets/table.h"

using namespace undula;

namespace {

// A user function of a packet, at its position among the call's arguments.
struct PacketFunction {
    EfiCallContext* context;
    aLambda* function;
    int position;
};

// What a step of the work comes to: nothing, a failure, or an error value of the user function's.
struct Outcome {
    Failure failure;
    Anyval* error = nullptr;

    explicit operator bool() const { return failure || error != nullptr; }
    ErrorValue value(EfiCallContext* context) const {
        return error != nullptr ? ErrorValue{error} : fail(context, failure);
    }
};

// The packet's coefficients as a new matrix; null when there is no memory.
aMatrix* packetMatrix(EfiCallContext* context, const aMatrix* source, const Rectangle& place) {
    auto elements = newElements(place.rows.length, place.cols.length);
    if (!elements) return nullptr;
    copyRectangle(source, place, elements.data());
    return newMatrix(context, static_cast<int>(place.rows.length), static_cast<int>(place.cols.length),
                     elements);
}

// Calls the function with the packet. An error value that it answers ends the work.
Outcome call(const PacketFunction& f, const aMatrix* source, const Rectangle& place, Anyval*& result) {
    aMatrix* packet = packetMatrix(f.context, source, place);
    if (packet == nullptr) return {outOfMemory()};
    const HostServiceScope scope;
    Cons* arguments = Cons::mk(f.context->allocator, packet, nullptr);
    if (arguments == nullptr) return {outOfMemory()};
    result = nullptr;
    if (f.context->evaluator->applyList(f.function, arguments, &result) == efiInterrupted)
        return {interruption()};
    return {{}, isError(result) ? result : nullptr};
}

// The value's place in the list: a number, or an array nested there.
Outcome storeValue(const PacketFunction& f, Anyval* value, aMatrix* list, int row) {
    const int col = list->cols - 1;
    if (tagOf(value) == TagScalar && static_cast<aComplex*>(value)->im == 0.0) {
        list->re[static_cast<std::ptrdiff_t>(list->stride) * col + row] = static_cast<aComplex*>(value)->re;
        return {};
    }
    if (tagOf(value) != TagArray || !isRealArray(f.context, static_cast<aMatrix*>(value))) {
        return {{"wavelet function must return real scalar or real array", f.position}};
    }
    const HostServiceScope scope;
    return efiWriteNested(f.context, list, row, col, value) == 0 ? Outcome{} : Outcome{outOfMemory()};
}

// Puts the value, an array of the packet's shape, into the packet's place.
Outcome storePacket(const PacketFunction& f, Anyval* value, const Rectangle& place, const Block& data) {
    if (tagOf(value) != TagArray || !isRealArray(f.context, static_cast<aMatrix*>(value))) {
        return {{"wavelet function must return real array", f.position}};
    }
    const auto* array = static_cast<aMatrix*>(value);
    const bool fits = static_cast<std::uint64_t>(array->rows) == place.rows.length &&
                      static_cast<std::uint64_t>(array->cols) == place.cols.length;
    if (!fits) return {{"wavelet function input and output array size mismatch", f.position}};
    double* column = data.origin + static_cast<std::ptrdiff_t>(place.cols.start) * data.stride +
                     static_cast<std::ptrdiff_t>(place.rows.start);
    for (int c = 0; c < array->cols; ++c, column += data.stride) {
        for (int r = 0; r < array->rows; ++r) column[r] = element(array, r, c);
    }
    return {};
}

// Calls visit(level, row, col) for all packets of a table, level by level and row by row, until one
// has an outcome.
template <class Visit>
Outcome visitTable(const PacketTable& table, Visit visit) {
    for (std::uint32_t level = 0; level <= table.levels; ++level) {
        const std::uint64_t rows = std::uint64_t{1} << level;
        const std::uint64_t cols = table.cols < 2 ? 1 : rows;
        for (std::uint64_t row = 0; row < rows; ++row) {
            for (std::uint64_t col = 0; col < cols; ++col) {
                if (auto outcome = visit(level, row, col)) return outcome;
            }
        }
    }
    return {};
}

// Packets of all levels.
std::uint64_t packetCount(const PacketTable& table) {
    const std::uint64_t next = table.levels + std::uint64_t{1};
    return table.cols < 2 ? (std::uint64_t{1} << next) - 1 : ((std::uint64_t{1} << (2 * next)) - 1) / 3;
}

// A list whose values come later, as the matrix that the worker returns.
aMatrix* newList(EfiCallContext* context, std::uint64_t rows, int cols) {
    auto elements = newElements(rows, static_cast<std::uint64_t>(cols));
    if (elements) std::fill_n(elements.data(), rows * static_cast<std::uint64_t>(cols), 0.0);
    return resultMatrix(context, static_cast<int>(rows), cols, elements);
}

// Coefficients and the basis they are of, as evalbs and applybs take them.
Failure checkBasisArguments(EfiCallContext* context, const aMatrix* coefficients, const aMatrix* matrix,
                            Basis& basis) {
    if (auto failure = requireRealArray(context, coefficients, 1)) return failure;
    if (auto failure = requireRealArray(context, matrix, 2)) return failure;
    if (auto failure = requireBasisFor(coefficients, matrix, 2)) return failure;
    if (auto failure = readTiling(matrix, basis, 2)) return failure;
    const auto tooDeep = [&](int side) {
        return basis.depth() > deepestLevel(static_cast<std::uint64_t>(side));
    };
    const bool invalid =
        tooDeep(coefficients->rows) || (coefficients->cols != 1 && tooDeep(coefficients->cols));
    return invalid ? Failure(Code::InvalidLevelInBasis, 2) : Failure();
}

}  // namespace

aMatrix* evaltbl(EfiCallContext* context, aVector* tableValue, aLambda* function) {
    if (auto failure = requireTableVector(tableValue)) return fail(context, failure);
    PacketTable table;
    if (auto failure = readTable(context, tableValue, table)) return fail(context, failure);
    const bool isSignal = table.cols < 2;
    aMatrix* list = newList(context, packetCount(table), isSignal ? 3 : 4);
    if (failed(list)) return list;

    const PacketFunction f = {context, function, 2};
    int row = 0;
    const auto evaluate = [&](std::uint32_t level, std::uint64_t packetRow,
                              std::uint64_t packetCol) -> Outcome {
        const aMatrix* element = table.elements[level];
        Anyval* value = nullptr;
        if (auto outcome = call(f, element, placeIn(element, level, packetRow, packetCol), value))
            return outcome;
        const double numbers[] = {static_cast<double>(level), static_cast<double>(packetRow),
                                  static_cast<double>(packetCol)};
        for (int col = 0; col < list->cols - 1; ++col) {
            list->re[static_cast<std::ptrdiff_t>(list->stride) * col + row] = numbers[col];
        }
        return storeValue(f, value, list, row++);
    };
    const Outcome outcome = visitTable(table, evaluate);
    return outcome ? outcome.value(context) : ErrorValue{list};
}

aMatrix* evalbs(EfiCallContext* context, aMatrix* coefficients, aMatrix* matrix, aLambda* function) {
    Basis basis;
    if (auto failure = checkBasisArguments(context, coefficients, matrix, basis))
        return fail(context, failure);
    aMatrix* list = newList(context, basis.rows.count, matrix->cols + 1);
    if (failed(list)) return list;
    copyElements(matrix, list->re);

    const PacketFunction f = {context, function, 3};
    int row = 0;
    for (const Packet& packet : basis.rows) {
        Anyval* value = nullptr;
        if (auto outcome = call(f, coefficients, placeIn(coefficients, packet), value))
            return outcome.value(context);
        if (auto outcome = storeValue(f, value, list, row++)) return outcome.value(context);
    }
    return list;
}

aVector* applytbl(EfiCallContext* context, aVector* tableValue, aLambda* function) {
    if (auto failure = requireTableVector(tableValue)) return fail(context, failure);
    PacketTable table;
    if (auto failure = readTable(context, tableValue, table)) return fail(context, failure);
    NewTable applied;
    if (!applied.allocate(table.rows, table.cols, table.levels)) return fail(context, outOfMemory());

    const PacketFunction f = {context, function, 2};
    const auto apply = [&](std::uint32_t level, std::uint64_t row, std::uint64_t col) -> Outcome {
        const aMatrix* element = table.elements[level];
        const Rectangle place = placeIn(element, level, row, col);
        Anyval* value = nullptr;
        if (auto outcome = call(f, element, place, value)) return outcome;
        return storePacket(f, value, place, applied.level(level));
    };
    const Outcome outcome = visitTable(table, apply);
    return outcome ? outcome.value(context) : ErrorValue{applied.result(context)};
}

aMatrix* applybs(EfiCallContext* context, aMatrix* coefficients, aMatrix* matrix, aLambda* function) {
    Basis basis;
    if (auto failure = checkBasisArguments(context, coefficients, matrix, basis))
        return fail(context, failure);
    auto result = copyOfElements(coefficients);
    if (!result) return fail(context, outOfMemory());

    const PacketFunction f = {context, function, 3};
    for (const Packet& packet : basis.rows) {
        const Rectangle place = placeIn(coefficients, packet);
        Anyval* value = nullptr;
        if (auto outcome = call(f, coefficients, place, value)) return outcome.value(context);
        if (auto outcome = storePacket(f, value, place, blockOf(coefficients, result)))
            return outcome.value(context);
    }
    return resultMatrix(context, coefficients->rows, coefficients->cols, result);
}
