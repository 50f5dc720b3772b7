// Wavelets by name where the pack wants filters, and filters where it wants names.
#pragma once

#include <octave/ovl.h>

#include "descriptions.h"
#include "efihost/host.h"

namespace undula {

// The filter of a name, as a value; what the pack says instead, as an error value.
efihost::Value filterNamed(const std::string& name);

// A call as the pack gets it: another function stands in where a filter was given for a name.
struct Prepared {
    const Description* function;
    Form form;
    octave_value_list arguments;
};

// `form` is that of the given number of arguments.
Prepared prepare(const Description& function, Form form, const octave_value_list& given);

}  // namespace undula
