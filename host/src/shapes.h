// The calling shapes of functions, as the host reads them from a pack's table.
#pragma once

#include <optional>

#include "efi/host.h"

namespace efihost {

bool isShape(const sFunctionInfo* signature);

// The number of arguments that the shape takes; none where it varies.
std::optional<int> arityOf(const sFunctionInfo& signature);

}  // namespace efihost
