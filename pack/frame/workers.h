// The typed workers of the pack's functions, declared from functions.def. A worker receives host
// values of known kinds and returns a new host value, or an error value under the same type.
#pragma once

#include "frame/dispatch.h"

// The forms below are written in its letters.
using namespace undula::form;

#define UNDULA_WORKER(name, form) EFI_PACK undula::Worker<form> name;
#define FIXED(name, n, form) UNDULA_WORKER(name, form)
#define OPTIONAL(name, n1, form1, n2, form2, n3, form3) \
    UNDULA_WORKER(name, form1)                          \
    UNDULA_WORKER(name, form2)                          \
    UNDULA_WORKER(name, form3)
#define SHORTENED(name, n1, form1, n2, form2) UNDULA_WORKER(name, form2)
#define UNREACHED(name, form) UNDULA_WORKER(name, form)

#include "frame/functions.def"

#undef FIXED
#undef OPTIONAL
#undef SHORTENED
#undef UNREACHED
#undef UNDULA_WORKER
