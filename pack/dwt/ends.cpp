#include "dwt/ends.h"

namespace undula {

namespace {

// Offsets far outside an n-periodic signal, brought near it: what is read follows the data, not a number
// that a user wrote.
Channels nearOrigin(Channels channels, Index n) {
    constexpr Index far = 4096;
    if (channels.first() < -n - far || channels.last() > n + far) {
        for (Filter* filter : {&channels.low, &channels.high})
            filter->offset = static_cast<std::int32_t>(modulo(filter->offset, n));
    }
    return channels;
}

std::uint32_t shortestExtended(const FilterBank&) {
    return 2;
}

// Both ends need as many outputs as there are taps.
std::uint32_t shortestInterval(const FilterBank& bank) {
    return 2 * static_cast<std::uint32_t>(bank.La);
}

AnalysisEnds analysePeriodic(const FilterBank& bank, Index n) {
    return {nearOrigin(analysisChannels(bank), n), periodicSample, {}};
}

SynthesisEnds synthesisePeriodic(const FilterBank& bank, Index n) {
    return {nearOrigin(synthesisChannels(bank), n), {ceilHalf(n)}, {floorHalf(n)}, n, {}};
}

AnalysisEnds analyseSymmetric(const FilterBank& bank, Index) {
    return {analysisChannels(bank), bank.La % 2 != 0 ? wholeSample : halfSample, {}};
}

SynthesisEnds synthesiseSymmetric(const FilterBank& bank, Index n) {
    const bool whole = bank.Lb % 2 != 0;
    const bool odd = n % 2 != 0;
    return {synthesisChannels(bank),
            symmetricExtension(ceilHalf(n), true, odd, whole),
            symmetricExtension(floorHalf(n), false, odd, whole),
            2 * n - (whole ? 2 : 0),
            {}};
}

AnalysisEnds analyseInterval(const FilterBank& bank, Index) {
    return {analysisChannels(bank), nullptr, {&bank, bank.La / 2}};
}

SynthesisEnds synthesiseInterval(const FilterBank& bank, Index n) {
    return {synthesisChannels(bank), {ceilHalf(n)}, {floorHalf(n)}, n, {&bank, bank.La / 2}};
}

}  // namespace

const Ends periodicEnds = {shortestExtended, analysePeriodic, synthesisePeriodic};
const Ends symmetricEnds = {shortestExtended, analyseSymmetric, synthesiseSymmetric};
const Ends intervalEnds = {shortestInterval, analyseInterval, synthesiseInterval};

}  // namespace undula
