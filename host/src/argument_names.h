// The names of the arguments of the pack's functions, for error texts.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "efihost/pack.h"

namespace efihost {

// Sets the forms of the functions where they are those of the pack that is described.
void nameArguments(std::vector<Function>& functions);

// The name of the argument at a 1-based position in a call with so many; empty where there is none.
std::string_view argumentName(const Function& function, std::size_t count, int argument);

}  // namespace efihost
