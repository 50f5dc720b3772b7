#include "dwt/multilevel.h"

#include <algorithm>

#include "dwt/sweep.h"
#include "frame/integers.h"

namespace undula {

namespace {

std::uint32_t sideAt(std::uint32_t side, std::uint32_t level) {
    return static_cast<std::uint32_t>(halved(side, level));
}

// The smooth part of a level; level 0 is the whole.
Block smoothOf(const Block& block, std::uint32_t level) {
    return {block.origin, block.stride, sideAt(block.rows, level), sideAt(block.cols, level)};
}

struct Transform {
    const BoundaryTreatment& boundary;
    const FilterBank& bank;
    const Block& data;
    const Block& result;
    std::uint32_t levels;
    const Poll& poll;
    Workspace& workspace;

    // The smooth parts between the levels take turns in scratch, each in half of what the one before has,
    // from that of level `first` on.
    double* between(double* scratch, std::uint32_t first, std::uint32_t level) const {
        return (level - first) % 2 == 0 ? scratch : scratch + sideAt(data.rows, first);
    }
    std::uint64_t scratchFrom(std::uint32_t first) const {
        return levels <= first ? 0 : std::uint64_t{sideAt(data.rows, first)} + sideAt(data.rows, first + 1);
    }

    Failure splitSignal() const {
        const std::uint32_t swept = sweptLevels(*boundary.ends, bank, data.rows, levels);
        const std::uint32_t first = std::max(swept, 1U);
        double* const scratch = workspace.room(scratchFrom(first) + (swept > 0 ? sweepRoom() : 0));
        if (scratch == nullptr) return Code::OutOfMemory;
        const double* samples = data.origin;
        for (std::uint32_t level = 1; level <= levels; ++level) {
            if (poll()) return Code::Interrupted;
            if (level < swept) continue;
            const std::uint32_t n = sideAt(data.rows, level - 1);
            double* low = level == levels ? result.origin : between(scratch, first, level);
            if (level == swept) {
                sweep(*boundary.ends, bank, samples, data.rows, swept, low, result.origin,
                      scratch + scratchFrom(first));
            } else if (auto failure =
                           boundary.analysis(bank, samples, n, low, result.origin + sideAt(n, 1))) {
                return failure;
            }
            samples = low;
        }
        return {};
    }

    Failure mergeSignal() const {
        double* const scratch = workspace.room(scratchFrom(1));
        if (scratch == nullptr) return Code::OutOfMemory;
        const double* low = data.origin;
        for (std::uint32_t level = levels; level >= 1; --level) {
            if (poll()) return Code::Interrupted;
            const std::uint32_t n = sideAt(data.rows, level - 1);
            double* samples = level == 1 ? result.origin : between(scratch, 1, level - 1);
            if (auto failure = boundary.synthesis(bank, low, data.origin + sideAt(n, 1), n, samples))
                return failure;
            low = samples;
        }
        return {};
    }

    Failure splitImages() const {
        const Poll linePoll = boundary.pollsForwardLines ? poll : Poll();
        for (std::uint32_t level = 0; level < levels; ++level) {
            const Block out = smoothOf(result, level);
            if (auto failure =
                    splitImage(boundary, bank, level == 0 ? data : out, out, {}, linePoll, workspace))
                return failure;
        }
        return {};
    }

    Failure mergeImages() const {
        for (std::uint32_t level = levels; level-- > 0;) {
            if (boundary.pollsInverseLevels && poll()) return Code::Interrupted;
            const Block smooth = smoothOf(level == levels - 1 ? data : result, level + 1);
            if (auto failure = mergeImage(boundary, bank, smoothOf(data, level), smooth,
                                          smoothOf(result, level), {}, poll, workspace))
                return failure;
        }
        return {};
    }
};

}  // namespace

Failure transformLevels(const BoundaryTreatment& boundary, const FilterBank& bank, const Block& data,
                        const Block& result, std::uint32_t levels, Direction direction, const Poll& poll,
                        Workspace& workspace) {
    if (levels == 0) {
        copyBlock(data, result);
        return {};
    }
    const Transform transform = {boundary, bank, data, result, levels, poll, workspace};
    if (data.cols == 1) {
        return direction == Direction::Forward ? transform.splitSignal() : transform.mergeSignal();
    }
    return direction == Direction::Forward ? transform.splitImages() : transform.mergeImages();
}

}  // namespace undula
