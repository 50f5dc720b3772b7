// Calling an entry of a pack through its exact type.
#pragma once

#include <span>

#include "efihost/pack.h"

namespace efihost {

// `arguments` has as many elements as the function's arity, or at most Host::maxArguments.
Anyval* invoke(const Function& function, EfiCallContext* context, std::span<Anyval* const> arguments);

}  // namespace efihost
