#include "packets/table.h"

#include <algorithm>

#include "frame/floating_point.h"
#include "frame/halving.h"
#include "frame/host_services.h"
#include "frame/matrices.h"

namespace undula {

namespace {

constexpr int tablePosition = 1;

Anyval* readCell(EfiCallContext* context, const aMatrix* vector, int row) {
    const HostServiceScope scope;
    return efiReadNested(context, vector, row, 0);
}

// An array of numbers. One that holds nested values is no level of a table.
Failure checkElement(EfiCallContext* context, const Anyval* element) {
    if (tagOf(element) != TagArray) return {"must be array", tablePosition};
    if (holdsNested(context, static_cast<const aMatrix*>(element)))
        return {Code::InvalidPacketTable, tablePosition};
    return {};
}

bool hasRoomFor(const aMatrix* data, std::uint32_t levels) {
    const auto fits = [levels](int side) { return levels <= deepestLevel(static_cast<std::uint64_t>(side)); };
    return fits(data->rows) && (data->cols == 1 || fits(data->cols));
}

bool writeCell(EfiCallContext* context, aMatrix* vector, int row, Anyval* value) {
    const HostServiceScope scope;
    return efiWriteNested(context, vector, row, 0, value) == 0;
}

}  // namespace

Failure requireTableVector(const aVector* vector) {
    const bool valid = tagOf(vector) == TagArray && vector->cols == 1 && !hasImaginaryPart(vector);
    return valid ? Failure() : Failure(text::mustBeRealVector, tablePosition);
}

Failure readTable(EfiCallContext* context, const aVector* vector, PacketTable& table) {
    const Failure invalid(Code::InvalidPacketTable, tablePosition);
    if (vector->rows < 1) return invalid;
    for (int row = 0; row < vector->rows; ++row) {
        if (readCell(context, vector, row) == nullptr) return invalid;
    }
    for (int row = 0; row < vector->rows; ++row) {
        Anyval* cell = readCell(context, vector, row);
        if (auto failure = checkElement(context, cell)) return failure;
        const auto* element = static_cast<const aMatrix*>(cell);
        if (row == 0) {
            table.levels = static_cast<std::uint32_t>(vector->rows) - 1;
            table.rows = element->rows;
            table.cols = element->cols;
            if (!hasRoomFor(element, table.levels)) return invalid;
        }
        if (element->rows != table.rows || element->cols != table.cols) return invalid;
        table.elements[row] = element;
    }
    return {};
}

bool NewTable::allocate(int rowCount, int colCount, std::uint32_t levelCount) {
    rows = rowCount;
    cols = colCount;
    levels = levelCount;
    for (std::uint32_t j = 0; j <= levels; ++j) {
        elements[j] = newElements(static_cast<std::uint64_t>(rows), static_cast<std::uint64_t>(cols));
        if (!elements[j]) return false;
    }
    return true;
}

Block NewTable::level(std::uint32_t j) const {
    return {elements[j].data(), rows, static_cast<std::uint32_t>(rows), static_cast<std::uint32_t>(cols)};
}

aVector* NewTable::result(EfiCallContext* context) {
    const int cells = static_cast<int>(levels) + 1;
    auto numbers = newElements(static_cast<std::uint64_t>(cells), 1);
    if (numbers) std::fill_n(numbers.data(), cells, 0.0);
    auto* vector = static_cast<aVector*>(resultMatrix(context, cells, 1, numbers));
    for (int j = 0; j < cells && !failed(vector); ++j) {
        aMatrix* element = newMatrix(context, rows, cols, elements[j]);
        if (element == nullptr || !writeCell(context, vector, j, element))
            return fail(context, outOfMemory());
    }
    return vector;
}

}  // namespace undula
