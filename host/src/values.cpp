#include "values.h"

#include <algorithm>
#include <atomic>
#include <limits>
#include <new>
#include <stdexcept>
#include <utility>

namespace efihost {

void Registry::add(const std::shared_ptr<Anyval>& value) {
    const std::lock_guard guard(mutex_);
    values_.emplace(value.get(), value);
}

void Registry::remove(const Anyval* value) noexcept {
    const std::lock_guard guard(mutex_);
    values_.erase(value);
}

std::shared_ptr<Anyval> Registry::find(const Anyval* value) const noexcept {
    const std::lock_guard guard(mutex_);
    const auto found = values_.find(value);
    return found == values_.end() ? nullptr : found->second.lock();
}

std::size_t Registry::size() const noexcept {
    const std::lock_guard guard(mutex_);
    return values_.size();
}

// Never destroyed: values may outlive the static objects of the process.
Registry& registry() {
    static Registry& theRegistry = *new Registry;
    return theRegistry;
}

std::size_t liveValues() {
    return registry().size();
}

namespace {

std::uint32_t bytesOf(int rows, int cols) {
    if (rows < 0 || cols < 0) throw std::invalid_argument("a matrix of negative size");
    if (!Value::isPossible(rows, cols)) throw std::length_error("a matrix of 4 GiB or more");
    return static_cast<std::uint32_t>(std::int64_t{rows} * cols) * std::uint32_t{sizeof(double)};
}

int lengthOf(std::size_t count) {
    if (!Value::isPossible(static_cast<std::int64_t>(count), 1)) {
        throw std::length_error("a matrix of 4 GiB or more");
    }
    return static_cast<int>(count);
}

bool fits(std::span<const double> numbers, const aMatrix& matrix) {
    return numbers.size() == matrix.bytes / sizeof(double);
}

// Frees nested matrices in a loop, as deep nesting would overflow the stack in a recursion. It falls
// back to recursion only when there is no memory for the list of what is left.
void freeCells(Cells cells) try {
    std::vector<Cells> left;
    left.push_back(std::move(cells));
    while (!left.empty()) {
        const Cells level = std::move(left.back());
        left.pop_back();
        for (const auto& [place, value] : level) {
            if (!value.isMatrix() || !Values::isSole(value)) continue;
            Cells& deeper = Values::get<OwnedMatrix>(value).cells;
            if (!deeper.empty()) left.push_back(std::move(deeper));
        }
    }
} catch (const std::bad_alloc&) {
}

}  // namespace

OwnedString::OwnedString(std::string_view characters) : Listed(TagString), storage(characters) {
    text = storage.c_str();
}

OwnedMatrix::OwnedMatrix(int rowCount, int colCount) : Listed(TagArray) {
    bytes = bytesOf(rowCount, colCount);
    stride = rows = rowCount;
    cols = colCount;
}

OwnedMatrix::~OwnedMatrix() {
    if (!cells.empty()) freeCells(std::move(cells));
    if (keeper) return;
    ::operator delete(re);
    ::operator delete(im);
}

OwnedError::OwnedError(std::string_view text, int argument) : Listed(TagError), message(text) {
    argIndex = argument;
}

bool Values::isSole(const Value& value) {
    const bool sole = value.value_.use_count() == 1;
    // Pairs with the release by which another thread dropped its handle.
    std::atomic_thread_fence(std::memory_order_acquire);
    return sole;
}

Value::Value(std::complex<double> number) {
    setScalar(number);
}

void Value::setScalar(std::complex<double> number) {
    if (!isScalar() || !Values::isSole(*this)) *this = Values::make<OwnedScalar>();
    auto& scalar = Values::get<OwnedScalar>(*this);
    scalar.re = number.real();
    scalar.im = number.imag();
}

Value::Value(std::string_view text) : Value(Values::make<OwnedString>(text)) {}

bool Value::isPossible(std::int64_t rows, std::int64_t cols) {
    constexpr std::int64_t longest = std::numeric_limits<std::int32_t>::max();
    constexpr std::int64_t most = std::numeric_limits<std::uint32_t>::max() / sizeof(double);
    return rows <= longest && cols <= longest && (rows <= 0 || cols <= most / rows);
}

Value Value::blank(int rows, int cols, bool isComplex) {
    Value value = Values::make<OwnedMatrix>(rows, cols);
    auto& matrix = Values::get<OwnedMatrix>(value);
    matrix.re = static_cast<double*>(::operator new(matrix.bytes));
    if (isComplex) matrix.im = static_cast<double*>(::operator new(matrix.bytes));
    return value;
}

Value Value::column(std::span<const double> re, std::span<const double> im) {
    return matrix(lengthOf(re.size()), 1, re, im);
}

Value Value::matrix(int rows, int cols, std::span<const double> re, std::span<const double> im) {
    Value value = blank(rows, cols, !im.empty());
    auto& matrix = Values::get<OwnedMatrix>(value);
    if (!fits(re, matrix) || !(im.empty() || fits(im, matrix))) {
        throw std::invalid_argument("as many numbers as the matrix has cells are needed");
    }
    std::copy(re.begin(), re.end(), matrix.re);
    std::copy(im.begin(), im.end(), matrix.im);
    return value;
}

Value Value::adopt(int rows, int cols, double* re, double* im) {
    Value value = Values::make<OwnedMatrix>(rows, cols);
    auto& matrix = Values::get<OwnedMatrix>(value);
    matrix.re = re;
    matrix.im = im;
    return value;
}

Value Value::borrow(int rows, int cols, int stride, const double* re, const double* im,
                    std::shared_ptr<const void> keeper) {
    if (stride < rows) throw std::invalid_argument("columns that overlap");
    if (!keeper) throw std::invalid_argument("borrowed memory without a keeper");
    Value value = adopt(rows, cols, const_cast<double*>(re), const_cast<double*>(im));
    auto& matrix = Values::get<OwnedMatrix>(value);
    matrix.stride = stride;
    matrix.keeper = std::move(keeper);
    return value;
}

Value Value::table(const std::vector<Value>& cells) {
    Value value = Values::make<OwnedMatrix>(lengthOf(cells.size()), 1);
    for (int row = 0; row < value.rows(); ++row) value.nest(row, 0, cells[static_cast<std::size_t>(row)]);
    return value;
}

Value Value::function(Callback callback, Tag tag) {
    return Values::make<OwnedFunction>(tag, std::move(callback), nullptr);
}

Value Value::function(RealCallback callback, Tag tag) {
    return Values::make<OwnedFunction>(tag, nullptr, std::move(callback));
}

Value Value::error(std::string_view message, int argument) {
    return Values::make<OwnedError>(message, argument);
}

Value Value::ofTag(std::int32_t tag) {
    return Values::make<OwnedOther>(tag);
}

Value Value::of(const Anyval* value) {
    return Value(registry().find(value));
}

namespace {

const Value& wanted(const Value& value, bool isOfKind) {
    if (!isOfKind) throw std::logic_error("a value of another kind");
    return value;
}

const OwnedMatrix& matrixWithCell(const Value& value, int row, int col) {
    const auto& matrix = Values::get<OwnedMatrix>(wanted(value, value.isMatrix()));
    if (!matrix.has(row, col)) throw std::out_of_range("a cell outside the matrix");
    return matrix;
}

std::span<const double> columnOf(const aMatrix& matrix, const double* array, int col) {
    if (col < 0 || col >= matrix.cols) throw std::out_of_range("a column outside the matrix");
    if (array == nullptr) return {};
    return {array + std::ptrdiff_t{matrix.stride} * col, static_cast<std::size_t>(matrix.rows)};
}

std::vector<double> blockOf(const aMatrix& matrix, const double* array) {
    const auto rows = static_cast<std::size_t>(matrix.rows);
    std::vector<double> block(rows * static_cast<std::size_t>(matrix.cols));
    for (int col = 0; col < matrix.cols; ++col) {
        const std::span<const double> column = columnOf(matrix, array, col);
        std::copy(column.begin(), column.end(), block.data() + rows * static_cast<std::size_t>(col));
    }
    return block;
}

}  // namespace

std::int32_t Value::tag() const {
    return wanted(*this, value_ != nullptr).value_->tag;
}

std::complex<double> Value::scalar() const {
    const auto& scalar = Values::get<OwnedScalar>(wanted(*this, isScalar()));
    return {scalar.re, scalar.im};
}

std::string Value::text() const {
    return Values::get<OwnedString>(wanted(*this, isString())).text;
}

std::string Value::message() const {
    return Values::get<OwnedError>(wanted(*this, isError())).message;
}

int Value::argument() const {
    return Values::get<OwnedError>(wanted(*this, isError())).argIndex;
}

const aMatrix& Value::matrix() const {
    return Values::get<OwnedMatrix>(wanted(*this, isMatrix()));
}

std::complex<double> Value::at(int row, int col) const {
    const OwnedMatrix& matrix = matrixWithCell(*this, row, col);
    const std::ptrdiff_t offset = std::ptrdiff_t{matrix.stride} * col + row;
    return {matrix.re ? matrix.re[offset] : 0.0, matrix.im ? matrix.im[offset] : 0.0};
}

std::span<const double> Value::re(int col) const {
    return columnOf(matrix(), matrix().re, col);
}

std::span<const double> Value::im(int col) const {
    return columnOf(matrix(), matrix().im, col);
}

std::vector<double> Value::reals() const {
    return blockOf(matrix(), matrix().re);
}

std::vector<double> Value::imaginaries() const {
    return blockOf(matrix(), matrix().im);
}

double* Value::release() {
    auto& matrix = Values::get<OwnedMatrix>(wanted(*this, isMatrix()));
    const bool isOwner = Values::isSole(*this) && !matrix.keeper && matrix.stride == matrix.rows;
    return isOwner ? std::exchange(matrix.re, nullptr) : nullptr;
}

bool Value::anyNested() const {
    return !Values::get<OwnedMatrix>(wanted(*this, isMatrix())).cells.empty();
}

Value Value::nested(int row, int col) const {
    const OwnedMatrix& matrix = matrixWithCell(*this, row, col);
    const auto found = matrix.cells.find(matrix.place(row, col));
    return found == matrix.cells.end() ? Value() : found->second;
}

void Value::nest(int row, int col, Value value) {
    const OwnedMatrix& matrix = matrixWithCell(*this, row, col);
    if (!value || value.raw() == raw()) throw std::invalid_argument("not a value to be nested here");
    Values::get<OwnedMatrix>(*this).cells.insert_or_assign(matrix.place(row, col), std::move(value));
}

}  // namespace efihost
