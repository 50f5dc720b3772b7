// Holds the records to the layout that hosts rely on: the stated offsets where pointers are 32
// bits wide, the same order of fields with the platform's pointers elsewhere.
#pragma once

#include <cstddef>

#include "efi/pack.h"

// The values inherit their tag, so offsetof on them is only "conditionally supported". Every compiler
// used here does support it.
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"
#endif

namespace efi {

inline constexpr bool narrowPointers = sizeof(void*) == 4;

static_assert(sizeof(Anyval) == 4 && sizeof(aError) == 12 && offsetof(aError, argIndex) == 8);
static_assert(sizeof(aComplex) == 24 && offsetof(aComplex, re) == 8 && offsetof(aComplex, im) == 16);
static_assert(offsetof(aString, text) == sizeof(void*));

static_assert(offsetof(aMatrix, stride) == 4 && offsetof(aMatrix, bytes) == 8);
static_assert(offsetof(aMatrix, hostField) == 12 && offsetof(aMatrix, re) == 16);
static_assert(offsetof(aMatrix, im) == 16 + sizeof(void*));
static_assert(offsetof(aMatrix, rows) == 16 + 2 * sizeof(void*));
static_assert(offsetof(aMatrix, cols) == 20 + 2 * sizeof(void*));
static_assert(sizeof(aMatrix) == 24 + 2 * sizeof(void*) && sizeof(aVector) == sizeof(aMatrix));

static_assert(offsetof(EfiCallContext, evaluator) == sizeof(void*));
static_assert(sizeof(EfiGuid) == 16);

static_assert(!narrowPointers || sizeof(sString) == 16);
static_assert(!narrowPointers || (offsetof(sString, text) == 4 && offsetof(sString, length) == 8));
static_assert(!narrowPointers || sizeof(EfiFunction) == 28);
static_assert(!narrowPointers || (offsetof(EfiFunction, flag) == 8 && offsetof(EfiFunction, name) == 12));
static_assert(!narrowPointers ||
              (offsetof(EfiFunction, reserved2) == 16 && offsetof(EfiFunction, entry) == 20));

}  // namespace efi

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif
