#include "shapes.h"

#include <algorithm>
#include <iterator>

struct sFunctionInfo {
    std::optional<int> arity;
};

namespace {

sFunctionInfo shapes[] = {{1}, {2}, {3}, {4}, {5}, {7}, {std::nullopt}};

}  // namespace

sFunctionInfo* Any_to_Any = &shapes[0];
sFunctionInfo* Any_Any_to_Any = &shapes[1];
sFunctionInfo* Any_Any_Any_to_Any = &shapes[2];
sFunctionInfo* Any_Any_Any_Any_to_Any = &shapes[3];
sFunctionInfo* Any_Any_Any_Any_Any_to_Any = &shapes[4];
sFunctionInfo* Any_Any_Any_Any_Any_Any_Any_to_Any = &shapes[5];
sFunctionInfo* Variable_to_Any = &shapes[6];

namespace efihost {

bool isShape(const sFunctionInfo* signature) {
    const auto isIt = [=](const sFunctionInfo& shape) { return &shape == signature; };
    return std::any_of(std::begin(shapes), std::end(shapes), isIt);
}

std::optional<int> arityOf(const sFunctionInfo& signature) {
    return signature.arity;
}

}  // namespace efihost
