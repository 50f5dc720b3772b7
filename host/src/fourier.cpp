#include "fourier.h"

namespace efihost {

namespace {

// Plans take 16 to 150 bytes a point. Those of more than `longestKept` points are not kept, and all
// are dropped before they exceed `pointsKept` points together.
constexpr std::size_t longestKept = std::size_t{1} << 17;
constexpr std::size_t pointsKept = std::size_t{1} << 19;

double at(const double* part, std::size_t k) {
    return part ? part[k] : 0.0;
}

void transformBy(const FourierPlan& plan, FourierRoom& room, const FourierColumn<const double>& x,
                 const FourierColumn<double>& result) {
    room.numbers.resize(x.n);
    for (std::size_t k = 0; k < x.n; ++k) room.numbers[k] = {at(x.re, k), at(x.im, k)};
    plan.transform(room);
    for (std::size_t m = 0; m < x.n; ++m) {
        result.re[m] = room.numbers[m].real();
        result.im[m] = room.numbers[m].imag();
    }
}

}  // namespace

void FourierTransformer::transform(const FourierColumn<const double>& x, bool inverse,
                                   const FourierColumn<double>& result) {
    if (x.n > longestKept) {
        FourierRoom room;
        transformBy(*makeFourierPlan(x.n, inverse), room, x, result);
    } else {
        transformBy(keptPlan(x.n, inverse), room_, x, result);
    }
}

const FourierPlan& FourierTransformer::keptPlan(std::size_t n, bool inverse) {
    const std::pair key(n, inverse);
    if (const auto found = plans_.find(key); found != plans_.end()) return *found->second;
    if (points_ + n > pointsKept) {
        plans_.clear();
        points_ = 0;
    }
    const auto added = plans_.emplace(key, makeFourierPlan(n, inverse)).first;
    points_ += n;
    return *added->second;
}

}  // namespace efihost
