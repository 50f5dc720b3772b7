// Discrete Fourier transforms of any length, in time proportional to n log n. An engine makes the plans;
// the build chooses it, kissfft or FFTW.
#pragma once

#include <complex>
#include <cstddef>
#include <map>
#include <memory>
#include <new>
#include <utility>
#include <vector>

namespace efihost {

// Gives memory that begins with a cache line, so that no vector of numbers lies across two.
template <class T>
struct LineAllocator {
    using value_type = T;
    static constexpr std::align_val_t line{64};

    LineAllocator() = default;
    template <class Other>
    explicit LineAllocator(const LineAllocator<Other>&) {}

    T* allocate(std::size_t count) { return static_cast<T*>(::operator new(count * sizeof(T), line)); }
    void deallocate(T* memory, std::size_t) { ::operator delete(memory, line); }
    bool operator==(const LineAllocator&) const = default;
};

using FourierNumbers = std::vector<std::complex<double>, LineAllocator<std::complex<double>>>;

// Memory that transforms share, so that it is not allocated every time.
struct FourierRoom {
    FourierNumbers numbers;  // to be transformed, and then the result
    FourierNumbers spare;
};

// The transform of one length and direction.
class FourierPlan {
 public:
    virtual ~FourierPlan() = default;
    virtual void transform(FourierRoom& room) const = 0;
};

// The engine's part. Throws std::bad_alloc.
std::unique_ptr<FourierPlan> makeFourierPlan(std::size_t n, bool inverse);

// The parts of n complex numbers.
template <class Number>
struct FourierColumn {
    std::size_t n;
    Number* re;
    Number* im;
};

// Keeps the plans of modest lengths, as a few lengths are transformed again and again.
class FourierTransformer {
 public:
    // Writes for each m the sum of x[k] exp(-2 pi i m k / n), or of x[k] exp(+2 pi i m k / n) when
    // inverse, n >= 1. A null part of x reads as zeros. The result may overwrite x. Throws
    // std::bad_alloc.
    void transform(const FourierColumn<const double>& x, bool inverse, const FourierColumn<double>& result);

 private:
    const FourierPlan& keptPlan(std::size_t n, bool inverse);

    std::map<std::pair<std::size_t, bool>, std::unique_ptr<FourierPlan>> plans_;
    std::size_t points_ = 0;
    FourierRoom room_;
};

}  // namespace efihost
