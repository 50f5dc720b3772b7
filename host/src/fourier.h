// Discrete Fourier transforms of any length, in time proportional to n log n.
#pragma once

#include <complex>
#include <cstddef>
#include <map>
#include <memory>
#include <utility>
#include <vector>

namespace efihost {

// The transform of one length and direction.
class FourierPlan {
 public:
    virtual ~FourierPlan() = default;
    virtual void transform(std::vector<std::complex<double>>& data) const = 0;
};

// Transforms, and keeps the plans of modest lengths for the next time: a few lengths are
// transformed again and again.
class FourierTransformer {
 public:
    // Puts in place of x[0..n-1], n >= 1, for each m the sum of x[k] exp(-2 pi i m k / n), or of
    // x[k] exp(+2 pi i m k / n) when inverse. Throws std::bad_alloc.
    void transform(std::vector<std::complex<double>>& data, bool inverse);

 private:
    const FourierPlan& keptPlan(std::size_t n, bool inverse);

    std::map<std::pair<std::size_t, bool>, std::unique_ptr<FourierPlan>> plans_;
    std::size_t points_ = 0;
};

}  // namespace efihost
