#include "dwt/multilevel.h"

#include "frame/integers.h"

namespace undula {

namespace {

std::uint32_t sideAt(std::uint32_t side, std::uint32_t level) {
    return static_cast<std::uint32_t>(halved(side, level));
}

struct Transform {
    const BoundaryTreatment& boundary;
    const FilterBank& bank;
    Direction direction;
    const Poll& poll;
    Workspace& workspace;

    Step* step() const { return direction == Direction::Forward ? boundary.analysis : boundary.synthesis; }

    Failure signalLevel(const Block& signal) const {
        if (poll()) return Code::Interrupted;
        return step()(bank, {signal.origin}, signal.rows, false, workspace);
    }

    Failure imageLevel(const Block& image) const {
        const bool forward = direction == Direction::Forward;
        if (!forward && boundary.pollsInverseLevels && poll()) return Code::Interrupted;
        const Poll linePoll = forward && !boundary.pollsForwardLines ? Poll() : poll;
        return separableStep(step(), bank, image, false, false, linePoll, workspace);
    }
};

}  // namespace

Failure transformLevels(const BoundaryTreatment& boundary, const FilterBank& bank, const Block& block,
                        std::uint32_t levels, Direction direction, const Poll& poll, Workspace& workspace) {
    const Transform transform = {boundary, bank, direction, poll, workspace};
    for (std::uint32_t i = 0; i < levels; ++i) {
        const std::uint32_t level = direction == Direction::Forward ? i : levels - 1 - i;
        Block smooth = block;
        smooth.rows = sideAt(block.rows, level);
        smooth.cols = sideAt(block.cols, level);
        if (auto failure = block.cols == 1 ? transform.signalLevel(smooth) : transform.imageLevel(smooth))
            return failure;
    }
    return {};
}

}  // namespace undula
