// The periodic and the symmetric steps: the data is extended beyond its ends.
#include <algorithm>

#include "dwt/filtering.h"

namespace undula {

namespace {

// Offsets far outside an n-periodic signal, brought near it: the work buffer is to follow the
// data, not a number that a user wrote.
Channels nearOrigin(Channels channels, Index n) {
    constexpr Index far = 4096;
    if (channels.first() < -n - far || channels.last() > n + far) {
        for (Filter* filter : {&channels.low, &channels.high})
            filter->offset = static_cast<std::int32_t>(modulo(filter->offset, n));
    }
    return channels;
}

Failure analyse(const Channels& channels, SampleExtension* extension, const Lines& lines, Index n, bool swap,
                Workspace& workspace) {
    if (n < 2) return Code::InvalidLevel;
    const Parts parts(n, swap);
    const Index first = std::min<Index>(0, channels.first());
    const Index last = std::max(n, n + channels.last());
    const std::uint64_t phaseRoom = Phases::room(first, last, lines.count);
    const auto outputRoom = static_cast<std::uint64_t>(parts.lowCount * lines.count);
    double* memory = workspace.room(phaseRoom + outputRoom);
    if (memory == nullptr) return Code::OutOfMemory;

    const Phases signal(memory, first, last, lines.count);
    signal.read(lines, n);
    const auto extend = [&](Index position) {
        copyLine(signal.at(extension(position, n)), signal.at(position), lines.count);
    };
    for (Index position = first; position < 0; ++position) extend(position);
    for (Index position = n; position <= last; ++position) extend(position);

    double* scratch = memory + phaseRoom;
    filterLines(channels.low, signal, 0, parts.lowCount, lines, parts.lowStart, scratch);
    filterLines(channels.high, signal, 0, parts.highCount, lines, parts.highStart, scratch);
    return {};
}

// Merges the two channels of n coefficients, extended to a period of `period` samples.
Failure synthesise(const Channels& channels, const Lines& lines, Index n, Index period,
                   const CoefficientExtension& lowExtension, const CoefficientExtension& highExtension,
                   bool swap, Workspace& workspace) {
    const Parts parts(n, swap);
    const Index first = std::min<Index>(0, channels.first());
    const Index last = std::max(period, period + channels.last());
    const Index firstCoefficient = Merger::firstCoefficient(channels, first);
    const Index lastCoefficient = std::max(ceilHalf(period), Merger::lastCoefficient(channels, last));
    const auto partRoom = static_cast<std::uint64_t>((lastCoefficient - firstCoefficient + 1) * lines.count);
    const std::uint64_t beforeRoom = Phases::room(first, 0, lines.count);
    const std::uint64_t afterRoom = Phases::room(period, last, lines.count);
    double* memory = workspace.room(2 * partRoom + beforeRoom + afterRoom + Merger::blockRoom(lines.count));
    if (memory == nullptr) return Code::OutOfMemory;

    const auto read = [&](double* to, Index start, const CoefficientExtension& extension) {
        return readCoefficients(to, firstCoefficient, lastCoefficient, lines, start, extension);
    };
    const Padded low = read(memory, parts.lowStart, lowExtension);
    const Padded high = read(memory + partRoom, parts.highStart, highExtension);
    const Merger merger(channels, low, high);
    const Phases before(memory + 2 * partRoom, first, 0, lines.count);
    const Phases after(memory + 2 * partRoom + beforeRoom, period, last, lines.count);
    merger.sum(weightedSum, before, first, -1);
    merger.sum(weightedSum, after, period, last);
    merger.mergeLines(lines, 0, n - 1, memory + 2 * partRoom + beforeRoom + afterRoom);

    // What lies outside the period is folded into it, position by position.
    const auto fold = [&](const Phases& outside, Index position) {
        const Index target = modulo(position, period);
        if (target >= n) return;
        const double* from = outside.at(position);
        double* to = lines.origin + target * lines.stride;
        for (Index i = 0; i < lines.count; ++i) to[i] += from[i];
    };
    for (Index position = first; position < 0; ++position) fold(before, position);
    for (Index position = last; position >= period; --position) fold(after, position);
    return {};
}

}  // namespace

Failure periodic_analysis_step(const FilterBank& bank, const Lines& lines, std::uint32_t n, bool swap,
                               Workspace& workspace) {
    return analyse(nearOrigin(analysisChannels(bank), n), periodicSample, lines, n, swap, workspace);
}

Failure periodic_synthesis_step(const FilterBank& bank, const Lines& lines, std::uint32_t n, bool swap,
                                Workspace& workspace) {
    if (n < 2) return Code::InvalidLevel;
    return synthesise(nearOrigin(synthesisChannels(bank), n), lines, n, n, {ceilHalf(n)}, {floorHalf(n)},
                      swap, workspace);
}

Failure symmetric_analysis_step(const FilterBank& bank, const Lines& lines, std::uint32_t n, bool swap,
                                Workspace& workspace) {
    return analyse(analysisChannels(bank), bank.La % 2 != 0 ? wholeSample : halfSample, lines, n, swap,
                   workspace);
}

Failure symmetric_synthesis_step(const FilterBank& bank, const Lines& lines, std::uint32_t n, bool swap,
                                 Workspace& workspace) {
    if (n < 2) return Code::InvalidLevel;
    const bool whole = bank.Lb % 2 != 0;
    const bool odd = n % 2 != 0;
    const Index period = 2 * static_cast<Index>(n) - (whole ? 2 : 0);
    return synthesise(synthesisChannels(bank), lines, n, period,
                      symmetricExtension(ceilHalf(n), true, odd, whole),
                      symmetricExtension(floorHalf(n), false, odd, whole), swap, workspace);
}

}  // namespace undula
