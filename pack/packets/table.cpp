#include "packets/table.h"

#include <algorithm>

#include "frame/floating_point.h"
#include "frame/host_services.h"
#include "frame/integers.h"
#include "frame/matrices.h"

namespace undula {

namespace {

constexpr int tablePosition = 1;

Anyval* readCell(EfiCallContext* context, const aMatrix* vector, int row) {
    const HostServiceScope scope;
    return efiReadNested(context, vector, row, 0);
}

bool writeCell(EfiCallContext* context, aMatrix* vector, int row, Anyval* value) {
    const HostServiceScope scope;
    return efiWriteNested(context, vector, row, 0, value) == 0;
}

// An array of numbers. One that holds nested values is no level of a table.
Failure checkElement(EfiCallContext* context, const Anyval* element) {
    if (tagOf(element) != TagArray) return {Code::MustBeArray, tablePosition};
    if (holdsNested(context, static_cast<const aMatrix*>(element)))
        return {Code::InvalidPacketTable, tablePosition};
    return {};
}

}  // namespace

Failure requireTableVector(const aVector* vector) {
    const bool valid = tagOf(vector) == TagArray && vector->cols == 1 && !hasImaginaryPart(vector);
    return valid ? Failure() : Failure(Code::MustBeRealVector, tablePosition);
}

Result<TableLevels> findLevels(EfiCallContext* context, const aVector* vector) {
    const Failure invalid(Code::InvalidPacketTable, tablePosition);
    if (vector->rows < 1) return invalid;
    for (int row = 0; row < vector->rows; ++row) {
        if (readCell(context, vector, row) == nullptr) return invalid;
    }
    TableLevels levels = {{}, static_cast<std::uint32_t>(vector->rows) - 1};
    for (int row = 0; row < vector->rows; ++row) {
        Anyval* cell = readCell(context, vector, row);
        if (auto failure = checkElement(context, cell)) return failure;
        const auto* element = static_cast<const aMatrix*>(cell);
        const aMatrix* data = row == 0 ? element : levels.elements[0];
        const bool deepEnough = row > 0 || holdsForSides(data, [&](std::uint64_t side) {
                                    return levels.count <= deepestLevel(side);
                                });
        if (!deepEnough || element->rows != data->rows || element->cols != data->cols) return invalid;
        levels.elements[row] = element;
    }
    return levels;
}

Result<Table> newTable(int rows, int cols, std::uint32_t levels) {
    Table table;
    table.rows = rows;
    table.cols = cols;
    table.levels = levels;
    for (std::uint32_t j = 0; j <= levels; ++j) {
        table.elements[j] = newElements(static_cast<std::uint64_t>(rows), static_cast<std::uint64_t>(cols));
        if (!table.elements[j]) return Code::OutOfMemory;
    }
    return table;
}

Result<Table> readTable(EfiCallContext* context, const aVector* vector) {
    const auto levels = findLevels(context, vector);
    if (!levels) return levels.failure();
    const aMatrix* data = levels->elements[0];
    auto table = newTable(data->rows, data->cols, levels->count);
    for (std::uint32_t j = 0; table && j <= levels->count; ++j)
        copyElements(levels->elements[j], table->elements[j].data());
    return table;
}

Result<aMatrix*> tableValue(EfiCallContext* context, Table& table) {
    const int cells = static_cast<int>(table.levels) + 1;
    auto numbers = newElements(static_cast<std::uint64_t>(cells), 1);
    if (numbers) std::fill_n(numbers.data(), cells, 0.0);
    auto vector = newMatrix(context, cells, 1, numbers);
    for (int j = 0; vector && j < cells; ++j) {
        const auto element = newMatrix(context, table.rows, table.cols, table.elements[j]);
        if (!element || !writeCell(context, *vector, j, *element)) return Code::OutOfMemory;
    }
    return vector;
}

}  // namespace undula
