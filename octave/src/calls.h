// Calls of the pack.
#pragma once

#include <octave/ovl.h>

#include <string_view>
#include <vector>

#include "efihost/host.h"

namespace undula {

// Calls a function of the pack with values of the host. An error value is a result like any other.
efihost::Value callPack(std::string_view function, const std::vector<efihost::Value>& arguments);

// Calls a function of the pack from Octave. Errors are Octave's, with the identifier "Undula:..." where
// the pack has refused something.
octave_value_list call(std::string_view function, const octave_value_list& given);

// The same for the function that the first value names.
octave_value_list callByName(const octave_value_list& given);

}  // namespace undula
