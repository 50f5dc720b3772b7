#include "eval/evaluation.h"

#include <cmath>

#include "frame/checks.h"

namespace undula {

namespace {

bool is32BitInteger(double x) {
    return isWhole(x) && std::isgreaterequal(x, -2147483648.0) && std::islessequal(x, 2147483647.0);
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
    // Volatile: the sum is that of doubles, also where a register has room for more digits.
    const volatile double withHalf = packet + 0.5;
    const bool valid = std::floor(withHalf) == packet && std::isgreaterequal(packet, 0.0);
    return valid ? Failure() : Failure(Code::MustBePositiveInteger, argument);
}

Failure checkPlane(const PlaneArguments& arguments) {
    if (auto failure = requirePositive(arguments.packetX, 6)) return failure;
    if (auto failure = requirePositive(arguments.packetY, 7)) return failure;
    return is32BitInteger(arguments.level) ? Failure() : Failure(Code::MustBeInteger, 3);
}

}  // namespace

Result<double> evaluate(EfiCallContext* context, const FilterSet& set, const PointArguments& arguments) {
    if (auto failure = checkPoint(arguments)) return failure;
    const PacketFunction function = {asIndex(arguments.packet), static_cast<std::int32_t>(arguments.level),
                                     static_cast<std::int32_t>(arguments.shift)};
    Workspace workspace;
    return evaluatePacket(set, function, arguments.x, pollOf(context), workspace);
}

Result<double> evaluate(EfiCallContext* context, const FilterSet& set, const PlaneArguments& arguments) {
    if (auto failure = checkPlane(arguments)) return failure;
    const PointArguments alongX = {arguments.x, arguments.level, arguments.shiftX, arguments.packetX};
    const PointArguments alongY = {arguments.y, arguments.level, arguments.shiftY, arguments.packetY};
    const auto valueX = evaluate(context, set, alongX);
    if (!valueX) return reposition(valueX.failure(), {1, 3, 4, 6});
    const auto valueY = evaluate(context, set, alongY);
    if (!valueY) return reposition(valueY.failure(), {2, 3, 5, 7});
    return *valueX * *valueY;
}

Result<aComplex*> scalarResult(EfiCallContext* context, const Result<double>& value) {
    if (!value) return value.failure();
    return newScalar(context, *value);
}

}  // namespace undula
