// Costs of coefficients that are computed without Python.
#pragma once

#include <pybind11/pybind11.h>

#include <optional>

#include "efihost/value.h"

namespace undula {

// Adds the class of costs, and what makes one by its name, to the extension.
void exposeCosts(pybind11::module_& module);

// The function of the host that a cost stands for; none for other objects.
std::optional<efihost::Value> costFunction(pybind11::handle object);

}  // namespace undula
