// evaltbl, evalbs: a user function of every packet of a table or of a basis, as a list.
// applytbl, applybs: every packet replaced by a user function of it.
#include <algorithm>

#include "dwt/data_argument.h"
#include "frame/checks.h"
#include "frame/floating_point.h"
#include "frame/integers.h"
#include "frame/workers.h"
#include "packets/basis_argument.h"
#include "packets/table.h"

using namespace undula;

namespace {

// The user function of a call, at its position among the arguments.
struct Callee {
    EfiCallContext* context;
    aLambda* function;
    int position;
};

// The packet's coefficients as a new matrix.
Result<aMatrix*> packetMatrix(EfiCallContext* context, const Block& packet) {
    auto elements = newElements(packet.rows, packet.cols);
    if (elements) copyBlock(packet, contiguous(elements.data(), packet.rows, packet.cols));
    return newMatrix(context, static_cast<int>(packet.rows), static_cast<int>(packet.cols), elements);
}

// What the function returns for the packet. An error value that it returns ends the call.
Result<Anyval*> call(const Callee& callee, const Block& packet) {
    const auto matrix = packetMatrix(callee.context, packet);
    if (!matrix) return matrix.failure();
    const HostServiceScope scope;
    Cons* arguments = Cons::mk(callee.context->allocator, *matrix, nullptr);
    if (arguments == nullptr) return Code::OutOfMemory;
    Anyval* value = nullptr;
    if (callee.context->evaluator->applyList(callee.function, arguments, &value) == efiInterrupted)
        return Code::Interrupted;
    if (isError(value)) return Failure::of(value);
    return value;
}

// A list of values, one row a packet: what tells the packet, and in the last column its value.
class ValueList {
 public:
    static Result<ValueList> make(EfiCallContext* context, std::uint64_t rows, int cols) {
        auto elements = newElements(rows, static_cast<std::uint64_t>(cols));
        if (elements) std::fill_n(elements.data(), rows * static_cast<std::uint64_t>(cols), 0.0);
        const auto matrix = newMatrix(context, static_cast<int>(rows), cols, elements);
        if (!matrix) return matrix.failure();
        return ValueList(*matrix);
    }
    ValueList() = default;

    // Calls the function with a packet, and adds the row.
    Failure add(const Callee& callee, const Packet& packet, const Block& coefficients) {
        const auto value = call(callee, coefficients);
        if (!value) return value.failure();
        const double numbers[] = {packet.level, packet.row, packet.col};
        for (int col = 0; col < lastColumn(); ++col) cell(col) = numbers[col];
        const Failure failure = storeValue(callee, *value);
        ++row;
        return failure;
    }

    aMatrix* matrix() const { return list; }

 private:
    explicit ValueList(aMatrix* values) : list(values) {}

    int lastColumn() const { return list->cols - 1; }
    double& cell(int col) const { return list->re[static_cast<std::ptrdiff_t>(list->stride) * col + row]; }

    // A number, or an array that is nested.
    Failure storeValue(const Callee& callee, Anyval* value) const {
        if (tagOf(value) == TagScalar && static_cast<aComplex*>(value)->im == 0.0) {
            cell(lastColumn()) = static_cast<aComplex*>(value)->re;
            return {};
        }
        if (!isRealArray(callee.context, value)) return {Code::MustReturnRealValue, callee.position};
        const HostServiceScope scope;
        return efiWriteNested(callee.context, list, row, lastColumn(), value) == 0 ? Code::None
                                                                                   : Code::OutOfMemory;
    }

    aMatrix* list = nullptr;
    int row = 0;
};

// Calls the function with a packet, and puts what it returns, an array of the packet's shape, into
// `result`, which may be the packet.
Failure replacePacket(const Callee& callee, const Block& packet, const Block& result) {
    const auto value = call(callee, packet);
    if (!value) return value.failure();
    if (!isRealArray(callee.context, *value)) return {Code::MustReturnRealArray, callee.position};
    const auto* array = static_cast<const aMatrix*>(*value);
    const auto rows = static_cast<std::uint32_t>(array->rows);
    const auto cols = static_cast<std::uint32_t>(array->cols);
    if (rows != packet.rows || cols != packet.cols) return {Code::PacketSizeMismatch, callee.position};
    copyPart(array, {{0, rows}, {0, cols}}, result);
    return {};
}

Block packetOf(const Block& data, const PacketIndex& packet) {
    return partOf(data, packetPlace(data.rows, data.cols, packet));
}

// Calls visit(packet, coefficients) for all packets of a table, level by level and row by row, until one
// returns a failure.
template <class Visit>
Failure forPacketsOf(const Table& table, Visit visit) {
    for (std::uint32_t level = 0; level <= table.levels; ++level) {
        const Block data = table.level(level);
        if (auto failure = forPacketsOfLevel(data.isSignal(), level, [&](const PacketIndex& packet) {
                return visit(packet, packetOf(data, packet));
            }))
            return failure;
    }
    return {};
}

// Packets of all levels.
std::uint64_t packetCount(const Table& table) {
    const std::uint64_t next = table.levels + std::uint64_t{1};
    return table.cols < 2 ? (std::uint64_t{1} << next) - 1 : ((std::uint64_t{1} << (2 * next)) - 1) / 3;
}

Result<aMatrix*> evaluateTable(const Callee& callee, const aVector* vector) {
    if (auto failure = requireTableVector(vector)) return failure;
    const auto table = readTable(callee.context, vector);
    if (!table) return table.failure();
    auto list = ValueList::make(callee.context, packetCount(*table), table->cols < 2 ? 3 : 4);
    if (!list) return list.failure();
    const auto add = [&](const PacketIndex& packet, const Block& coefficients) {
        const Packet numbers = {static_cast<double>(packet.level), static_cast<double>(packet.row),
                                static_cast<double>(packet.col)};
        return list->add(callee, numbers, coefficients);
    };
    if (auto failure = forPacketsOf(*table, add)) return failure;
    return list->matrix();
}

// Every packet is read, and then replaced, where it stands in the copy of the table.
Result<aMatrix*> applyToTable(const Callee& callee, const aVector* vector) {
    if (auto failure = requireTableVector(vector)) return failure;
    auto table = readTable(callee.context, vector);
    if (!table) return table.failure();
    const auto replace = [&](const PacketIndex&, const Block& packet) {
        return replacePacket(callee, packet, packet);
    };
    if (auto failure = forPacketsOf(*table, replace)) return failure;
    return tableValue(callee.context, *table);
}

// Coefficients and the basis they are of, as evalbs and applybs take them.
struct BasisArguments {
    const aMatrix* coefficients;
    const aMatrix* basis;
};

Result<Basis> readBasisOf(const Callee& callee, const BasisArguments& arguments) {
    const auto [coefficients, matrix] = arguments;
    if (auto failure = requireRealArray(callee.context, coefficients, 1)) return failure;
    if (auto failure = requireRealArray(callee.context, matrix, 2)) return failure;
    if (auto failure = requireBasisFor(coefficients, matrix, 2)) return failure;
    auto basis = readTiling(matrix, 2);
    if (!basis) return basis;
    const bool admitted =
        holdsForSides(coefficients, [&](std::uint64_t side) { return basis->depth() <= deepestLevel(side); });
    if (!admitted) return Failure(Code::InvalidLevelInBasis, 2);
    return basis;
}

Result<aMatrix*> evaluateBasis(const Callee& callee, const BasisArguments& arguments) {
    const auto basis = readBasisOf(callee, arguments);
    if (!basis) return basis.failure();
    const auto copy = copyOfElements(arguments.coefficients);
    if (!copy) return Code::OutOfMemory;
    auto list = ValueList::make(callee.context, basis->rows.count, arguments.basis->cols + 1);
    if (!list) return list.failure();
    const Block data = blockOf(arguments.coefficients, copy);
    for (const Packet& packet : basis->rows) {
        if (auto failure = list->add(callee, packet, packetOf(data, packet.index()))) return failure;
    }
    return list->matrix();
}

// A packet that is listed twice is the same one both times, so the result is an array of its own.
Result<aMatrix*> applyToBasis(const Callee& callee, const BasisArguments& arguments) {
    const auto basis = readBasisOf(callee, arguments);
    if (!basis) return basis.failure();
    const aMatrix* coefficients = arguments.coefficients;
    const auto copy = copyOfElements(coefficients);
    auto result = copyOfElements(coefficients);
    if (!copy || !result) return Code::OutOfMemory;
    const Block data = blockOf(coefficients, copy);
    const Block out = blockOf(coefficients, result);
    for (const Packet& packet : basis->rows) {
        const PacketIndex index = packet.index();
        if (auto failure = replacePacket(callee, packetOf(data, index), packetOf(out, index))) return failure;
    }
    return newMatrix(callee.context, coefficients->rows, coefficients->cols, result);
}

}  // namespace

aMatrix* evaltbl(EfiCallContext* context, aVector* table, aLambda* function) {
    return toHost(context, evaluateTable({context, function, 2}, table));
}

aMatrix* evalbs(EfiCallContext* context, aMatrix* coefficients, aMatrix* basis, aLambda* function) {
    return toHost(context, evaluateBasis({context, function, 3}, {coefficients, basis}));
}

aVector* applytbl(EfiCallContext* context, aVector* table, aLambda* function) {
    return toHost(context, applyToTable({context, function, 2}, table));
}

aMatrix* applybs(EfiCallContext* context, aMatrix* coefficients, aMatrix* basis, aLambda* function) {
    return toHost(context, applyToBasis({context, function, 3}, {coefficients, basis}));
}
