// What a Value points to: a record of the border, followed by the host's own fields.
#pragma once

#include <map>
#include <mutex>
#include <unordered_map>

#include "efihost/value.h"

namespace efihost {

// All values that exist, by address. A pointer that is not listed is not the host's, and nothing is
// read beyond the record that it points to.
class Registry {
 public:
    void add(const std::shared_ptr<Anyval>& value);
    void remove(const Anyval* value) noexcept;
    std::shared_ptr<Anyval> find(const Anyval* value) const noexcept;
    std::size_t size() const noexcept;

    // Around a fork, so that the list is whole in the child.
    void lock() { mutex_.lock(); }
    void unlock() { mutex_.unlock(); }

 private:
    // Held only for a look-up, never while waiting for or calling anything else.
    mutable std::mutex mutex_;
    std::unordered_map<const Anyval*, std::weak_ptr<Anyval>> values_;
};

Registry& registry();

template <class Record>
struct Listed : Record {
    explicit Listed(std::int32_t kind) : Record{} { this->tag = kind; }
    Listed(const Listed&) = delete;
    Listed& operator=(const Listed&) = delete;
    ~Listed() { registry().remove(this); }
};

struct OwnedScalar : Listed<aComplex> {
    OwnedScalar() : Listed(TagScalar) {}
};

struct OwnedString : Listed<aString> {
    explicit OwnedString(std::string_view characters);

    std::string storage;
};

// Cells are counted by columns: cell (r, c) has the place rows * c + r.
using Cells = std::map<std::int64_t, Value>;

struct OwnedMatrix : Listed<aMatrix> {
    OwnedMatrix(int rowCount, int colCount);
    ~OwnedMatrix();

    std::int64_t place(int row, int col) const { return std::int64_t{rows} * col + row; }
    bool has(int row, int col) const { return row >= 0 && row < rows && col >= 0 && col < cols; }

    Cells cells;
    std::shared_ptr<const void> keeper;  // of borrowed arrays; null when the matrix owns its arrays
};

struct OwnedFunction : Listed<aLambda> {
    OwnedFunction(Tag kind, Callback general, RealCallback ofReal)
        : Listed(kind), callback(std::move(general)), real(std::move(ofReal)) {}

    // One of the two is set.
    Callback callback;
    RealCallback real;
};

struct OwnedError : Listed<aError> {
    OwnedError(std::string_view text, int argument);

    std::string message;
};

struct OwnedOther : Listed<Anyval> {
    using Listed::Listed;
};

class Values {
 public:
    template <class Owned, class... Arguments>
    static Value make(Arguments&&... arguments) {
        Value value(std::make_shared<Owned>(std::forward<Arguments>(arguments)...));
        registry().add(value.value_);
        return value;
    }

    // The host's part of a value; the caller knows its kind.
    template <class Owned>
    static Owned& get(const Value& value) {
        return static_cast<Owned&>(*value.value_);
    }

    // Whether the handle is the only one, so the value may be changed.
    static bool isSole(const Value& value);
};

}  // namespace efihost
