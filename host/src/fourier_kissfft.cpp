// The plans of kissfft: for a length with a large prime factor, a convolution of plans for smooth ones.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <functional>
#include <kissfft.hh>
#include <numbers>
#include <utility>

#include "efihost/host.h"
#include "fourier.h"

namespace efihost {

const char* fourierEngine() {
    return "kissfft";
}

namespace {

using Complex = std::complex<double>;

// The butterflies take time proportional to a prime factor at each of the n points.
constexpr std::size_t largestDirectFactor = 50;

// What is left of n without the prime factors up to `largest`.
std::size_t roughPart(std::size_t n, std::size_t largest) {
    for (std::size_t factor = 2; factor <= largest; ++factor) {
        while (n % factor == 0) n /= factor;
    }
    return n;
}

std::size_t smoothLengthFrom(std::size_t least) {
    std::size_t n = least;
    while (roughPart(n, 5) != 1) ++n;
    return n;
}

class DirectPlan : public FourierPlan {
 public:
    DirectPlan(std::size_t n, bool inverse) : fft_(n, inverse) {}

    void transform(FourierRoom& room) const override {
        room.spare.resize(room.numbers.size());
        fft_.transform(room.numbers.data(), room.spare.data());
        room.numbers.swap(room.spare);
    }

 private:
    kissfft<double> fft_;
};

void multiply(FourierNumbers& numbers, const FourierNumbers& factors) {
    std::transform(numbers.begin(), numbers.end(), factors.begin(), numbers.begin(), std::multiplies<>());
}

// exp(+-pi i k / n) for k < 2 n. The angle is taken from the nearest of four axes, since the rounding of
// a large angle is a large error.
Complex onCircle(std::uint64_t k, std::uint64_t n, bool inverse) {
    const std::uint64_t axis = (2 * k + n / 2) / n;
    const double beyond = 0.5 * (2.0 * static_cast<double>(k) - static_cast<double>(axis * n));
    const Complex turned = std::polar(1.0, std::numbers::pi * beyond / static_cast<double>(n));
    const Complex axes[] = {{1.0, 0.0}, {0.0, 1.0}, {-1.0, 0.0}, {0.0, -1.0}};
    const Complex point = turned * axes[axis % 4];
    return inverse ? point : std::conj(point);
}

// With m k = (m^2 + k^2 - (m - k)^2) / 2 the transform becomes a convolution with the chirp
// exp(-+pi i k^2 / n), which transforms of a smooth length carry out.
class ChirpPlan : public FourierPlan {
 public:
    ChirpPlan(std::size_t n, bool inverse)
        : chirp_(n),
          response_(smoothLengthFrom(2 * n - 1)),
          forwards_(response_.size(), false),
          backwards_(response_.size(), true) {
        for (std::size_t k = 0; k < n; ++k) {
            // The square is reduced as an integer, so that no digit of the angle is lost.
            const std::uint64_t square = std::uint64_t{k} * k % (2 * std::uint64_t{n});
            chirp_[k] = onCircle(square, n, inverse);
        }
        const double scale = 1.0 / static_cast<double>(response_.size());
        response_[0] = std::conj(chirp_[0]) * scale;
        for (std::size_t k = 1; k < n; ++k) {
            response_[k] = response_[response_.size() - k] = std::conj(chirp_[k]) * scale;
        }
        FourierRoom room{std::move(response_), {}};
        forwards_.transform(room);
        response_ = std::move(room.numbers);
    }

    void transform(FourierRoom& room) const override {
        FourierNumbers& numbers = room.numbers;
        multiply(numbers, chirp_);
        numbers.resize(response_.size());
        forwards_.transform(room);
        multiply(numbers, response_);
        backwards_.transform(room);
        numbers.resize(chirp_.size());
        multiply(numbers, chirp_);
    }

 private:
    FourierNumbers chirp_;
    FourierNumbers response_;  // spectrum of the conjugate chirp, over the padded length
    DirectPlan forwards_;
    DirectPlan backwards_;
};

}  // namespace

std::unique_ptr<FourierPlan> makeFourierPlan(std::size_t n, bool inverse) {
    if (roughPart(n, largestDirectFactor) == 1) return std::make_unique<DirectPlan>(n, inverse);
    return std::make_unique<ChirpPlan>(n, inverse);
}

}  // namespace efihost
