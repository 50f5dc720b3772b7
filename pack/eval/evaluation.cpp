#include "eval/evaluation.h"

#include <cmath>

#include "filters/active_filter.h"
#include "frame/checks.h"

namespace undula {

namespace {

bool is32BitInteger(double x) {
    return std::floor(x) == x && std::isgreaterequal(x, -2147483648.0) && std::islessequal(x, 2147483647.0);
}

Failure requireSigned(double x, int argument) {
    if (auto failure = requireWhole(x, argument)) return failure;
    return is32BitInteger(x) ? Failure() : Failure(Code::InvalidLevel, argument);
}

Failure checkPoint(const PointArguments& arguments) {
    if (auto failure = requireLevel(arguments.packet, 4)) return failure;
    if (auto failure = requireSigned(arguments.shift, 3)) return failure;
    return requireSigned(arguments.level, 2);
}

Failure requirePositive(double packet, int argument) {
    const bool valid = std::floor(packet + 0.5) == packet && std::isgreaterequal(packet, 0.0);
    return valid ? Failure() : Failure(Code::MustBePositiveInteger, argument);
}

Failure checkPlane(const PlaneArguments& arguments) {
    if (auto failure = requirePositive(arguments.packetX, 6)) return failure;
    if (auto failure = requirePositive(arguments.packetY, 7)) return failure;
    return is32BitInteger(arguments.level) ? Failure() : Failure(Code::MustBeInteger, 3);
}

}  // namespace

FilterSet activeSet(FunctionSet set) {
    return set == FunctionSet::Analysis ? analysisSet(ActiveFilter) : synthesisSet(ActiveFilter);
}

Failure evaluate(EfiCallContext* context, const FilterSet& set, const PointArguments& arguments,
                 double& value) {
    if (auto failure = checkPoint(arguments)) return failure;
    const PacketFunction function = {asIndex(arguments.packet), static_cast<std::int32_t>(arguments.level),
                                     static_cast<std::int32_t>(arguments.shift)};
    Workspace workspace;
    return failureAt(evaluatePacket(set, function, arguments.x, pollOf(context), workspace, value), 0);
}

Failure evaluate(EfiCallContext* context, const FilterSet& set, const PlaneArguments& arguments,
                 double& value) {
    if (auto failure = checkPlane(arguments)) return failure;
    const PointArguments alongX = {arguments.x, arguments.level, arguments.shiftX, arguments.packetX};
    const PointArguments alongY = {arguments.y, arguments.level, arguments.shiftY, arguments.packetY};
    double valueX = 0.0;
    double valueY = 0.0;
    if (auto failure = evaluate(context, set, alongX, valueX)) return reposition(failure, {1, 3, 4, 6});
    if (auto failure = evaluate(context, set, alongY, valueY)) return reposition(failure, {2, 3, 5, 7});
    value = valueX * valueY;
    return {};
}

}  // namespace undula
