// The evaluators with the checks of their arguments. Failures name the argument by its position among
// those listed; the callers move them to where the user wrote it.
#pragma once

#include "efi/host.h"
#include "eval/packet_function.h"

namespace undula {

// Which functions of the active filter: those of its analysis filters, or their duals.
enum class FunctionSet { Analysis, Synthesis };

FilterSet activeSet(FunctionSet set);

// Point (1), level (2), shift (3) and packet (4) as a user gives them, real parts.
struct PointArguments {
    double x;
    double level;
    double shift;
    double packet;
};

// Checks packet, shift and level, in this order, and evaluates.
Failure evaluate(EfiCallContext* context, const FilterSet& set, const PointArguments& arguments,
                 double& value);

// The point (1, 2), level (3), shifts (4, 5) and packets (6, 7) of a product of two functions.
struct PlaneArguments {
    double x;
    double y;
    double level;
    double shiftX;
    double shiftY;
    double packetX;
    double packetY;
};

Failure evaluate(EfiCallContext* context, const FilterSet& set, const PlaneArguments& arguments,
                 double& value);

}  // namespace undula
