#include "dwt/boundary.h"

#include "frame/integers.h"

namespace undula {

namespace {

bool admitsPeriodic(const FilterBank&, std::uint64_t n, std::uint64_t levels) {
    return divisible(n, levels);
}

bool admitsSymmetric(const FilterBank&, std::uint64_t n, std::uint64_t levels) {
    return levels <= deepestLevel(n);
}

// The last step must find as many samples as the filter has taps.
bool admitsInterval(const FilterBank& bank, std::uint64_t n, std::uint64_t levels) {
    if (!divisible(n, levels)) return false;
    const std::uint64_t lastLength = levels == 0 ? 2 * n : n >> (levels - 1);
    return lastLength >= static_cast<std::uint64_t>(bank.Lb);
}

}  // namespace

const BoundaryTreatment periodicBoundary = {
    .analysis = periodic_analysis_step,
    .synthesis = periodic_synthesis_step,
    .ends = &periodicEnds,
    .suits = nullptr,
    .refusal = Code::None,
    .admits = admitsPeriodic,
    .waveletFirst = false,
    .pollsForwardLines = false,
    .pollsInverseLevels = false,
};

const BoundaryTreatment symmetricBoundary = {
    .analysis = symmetric_analysis_step,
    .synthesis = symmetric_synthesis_step,
    .ends = &symmetricEnds,
    .suits = &Wavelet::isSymmetric,
    .refusal = Code::NotSymmetric,
    .admits = admitsSymmetric,
    .waveletFirst = false,
    .pollsForwardLines = true,
    .pollsInverseLevels = true,
};

const BoundaryTreatment intervalBoundary = {
    .analysis = interval_analysis_step,
    .synthesis = interval_synthesis_step,
    .ends = &intervalEnds,
    .suits = &Wavelet::hasInterval,
    .refusal = Code::IntervalUnimplemented,
    .admits = admitsInterval,
    .waveletFirst = true,
    .pollsForwardLines = true,
    .pollsInverseLevels = false,
};

Failure requireSuitable(const BoundaryTreatment& boundary, const FilterBank& bank, int waveletArgument) {
    if (boundary.suits == nullptr || (bank.selected->*boundary.suits)() == 1) return {};
    return {boundary.refusal, waveletArgument};
}

}  // namespace undula
