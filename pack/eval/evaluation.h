// The evaluators with the checks of their arguments. Failures name the argument by its position among
// those listed; the callers move them to where the user wrote it.
#pragma once

#include "efi/host.h"
#include "eval/packet_function.h"

namespace undula {

// The functions of a wavelet: those of its analysis filters, or their duals.
enum class FunctionSet { Analysis, Synthesis };

inline FilterSet filtersOf(const FilterBank& bank, FunctionSet set) {
    return set == FunctionSet::Analysis ? analysisSet(bank) : synthesisSet(bank);
}

// Point (1), level (2), shift (3) and packet (4) as a user gives them, real parts.
struct PointArguments {
    double x;
    double level;
    double shift;
    double packet;
};

// Checks packet, shift and level, in this order, and evaluates.
Result<double> evaluate(EfiCallContext* context, const FilterSet& set, const PointArguments& arguments);

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

Result<double> evaluate(EfiCallContext* context, const FilterSet& set, const PlaneArguments& arguments);

// The scalar that a worker returns for a value.
Result<aComplex*> scalarResult(EfiCallContext* context, const Result<double>& value);

}  // namespace undula
