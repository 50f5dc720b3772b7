#include "dwt/multilevel.h"

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

    // The smooth parts between the levels take turns in scratch: level j in half of what level j - 1 has.
    double* between(double* scratch, std::uint32_t level) const {
        return level % 2 != 0 ? scratch : scratch + sideAt(data.rows, 1);
    }
    double* scratchForSmooth() const {
        const std::uint64_t needed = std::uint64_t{sideAt(data.rows, 1)} + sideAt(data.rows, 2);
        return workspace.room(levels < 2 ? 0 : needed);
    }

    Failure splitSignal() const {
        double* scratch = scratchForSmooth();
        if (scratch == nullptr) return Code::OutOfMemory;
        const double* samples = data.origin;
        for (std::uint32_t level = 1; level <= levels; ++level) {
            if (poll()) return Code::Interrupted;
            const std::uint32_t n = sideAt(data.rows, level - 1);
            double* low = level == levels ? result.origin : between(scratch, level);
            if (auto failure = boundary.analysis(bank, samples, n, low, result.origin + sideAt(n, 1)))
                return failure;
            samples = low;
        }
        return {};
    }

    Failure mergeSignal() const {
        double* scratch = scratchForSmooth();
        if (scratch == nullptr) return Code::OutOfMemory;
        const double* low = data.origin;
        for (std::uint32_t level = levels; level >= 1; --level) {
            if (poll()) return Code::Interrupted;
            const std::uint32_t n = sideAt(data.rows, level - 1);
            double* samples = level == 1 ? result.origin : between(scratch, level - 1);
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
