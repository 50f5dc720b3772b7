// Owned memory that can be refused: the one way in which the pack allocates.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

namespace undula {

// Tells the system that a block will be used as a whole: one fault for each large page, not for each
// small one, is what fresh memory then costs. A hint, and nothing where the system has no such pages.
void adviseLargePages(void* block, std::size_t bytes);

// An array of plain numbers from the global operator new, freed when its owner goes. An array that
// could not be had is false; every maker of one looks.
template <class T>
class Array {
    static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_destructible_v<T>);

 public:
    Array() = default;

    // Elements without a value. The count is 64 bits wide so that a product of sizes can be
    // asked for as it stands, and refused.
    static Array uninitialised(std::uint64_t count) {
        Array array;
        if (count <= PTRDIFF_MAX / sizeof(T)) {
            const auto bytes = static_cast<std::size_t>(count) * sizeof(T);
            array.elements.reset(static_cast<T*>(::operator new(bytes, std::nothrow)));
            if (array) adviseLargePages(array.data(), bytes);
        }
        return array;
    }

    static Array zeroed(std::uint64_t count) {
        Array array = uninitialised(count);
        if (array) std::uninitialized_value_construct_n(array.data(), static_cast<std::size_t>(count));
        return array;
    }

    explicit operator bool() const { return elements != nullptr; }
    T* data() const { return elements.get(); }
    T& operator[](std::size_t index) const { return elements.get()[index]; }

    // Leaves the array to the caller.
    T* release() { return elements.release(); }

 private:
    struct Free {
        void operator()(T* memory) const { ::operator delete(memory); }
    };
    std::unique_ptr<T, Free> elements;
};

// Working storage that a chain of steps shares: it grows to the largest request and is freed once. Few
// numbers are in the storage itself: functions at a point need no more.
class Workspace {
 public:
    // Room for `count` doubles with no particular values, valid until the next call; null when
    // there is no memory. It starts at a cache line, so that vectors lie in one line each.
    double* room(std::uint64_t count) {
        if (count <= mostFew) return few;
        if (!array || count > capacity) {
            array = Array<double>();
            array = Array<double>::uninitialised(count + line);
            capacity = array ? count : 0;
        }
        const auto behind = reinterpret_cast<std::uintptr_t>(array.data()) / sizeof(double) % line;
        return array ? array.data() + (line - behind) % line : nullptr;
    }

 private:
    static constexpr std::size_t line = 8;  // doubles
    static constexpr std::uint64_t mostFew = 128;

    alignas(64) double few[mostFew];
    Array<double> array;
    std::uint64_t capacity = 0;
};

}  // namespace undula
