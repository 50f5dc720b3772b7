// The values that a host and a function pack exchange.
//
// Every value begins with a 32-bit tag that tells its type. Integers are 32 bits wide, numbers
// are IEEE doubles, pointers are the platform's. All values belong to the host: a pack makes them
// through the host's operations (host.h, services.h), never frees one, and keeps no pointer to
// one beyond the call.
#pragma once

#include <cstdint>

#include "efi/platform.h"

class IqrAllocator;

enum Tag : std::int32_t {
    TagError = 0,         // aError
    TagScalar = 2,        // aComplex
    TagString = 3,        // aString
    TagFunction = 4,      // aLambda
    TagArray = 5,         // aMatrix; an aVector is an aMatrix of one column, without a tag of its own
    TagFunctionAlt = 8,   // aLambda, a second kind of function value, treated as TagFunction
    TagUnsupported = 16,  // a value that no function of a pack accepts
};

// The head of every value.
struct Anyval {
    std::int32_t tag;
};

// A message and the argument that it is about. The host may add fields after these.
struct EFI_THROWN aError : Anyval {
    std::int32_t hostField;
    std::int32_t argIndex;  // 1-based position of the argument at fault; 0: the call as a whole
};

// A real or complex number. It is real when `im` compares equal to 0.
struct aComplex : Anyval {
    alignas(8) double re;
    double im;
};

// NUL-terminated text of 8-bit characters.
struct aString : Anyval {
    const char* text;
};

// A rows x cols matrix, stored by columns: element (r, c) is re[stride * c + r], and likewise im.
// A null array reads as zeros. Rows at and beyond `rows` of a column are not part of the matrix.
// A cell may hold a nested value instead of a number: see host.h.
struct aMatrix : Anyval {
    std::int32_t stride;  // elements from the start of one column to the next, at least rows
    std::uint32_t bytes;  // size of one array, re or im
    std::int32_t hostField;
    double* re;
    double* im;
    std::int32_t rows;
    std::int32_t cols;

    // Makes a rows x cols matrix around the arrays, which it then owns; both come from the global
    // operator new. `bytes` is 8 * rows * cols; `im` is null for a real matrix. On failure it returns
    // null or throws, and the arrays are still the caller's.
    EFI_HOST static aMatrix* mk(IqrAllocator* allocator, int rows, int cols, double* re, double* im,
                                unsigned bytes);
};

// An aMatrix with one column.
struct aVector : aMatrix {};

// A user's function. A pack can only pass it to the host's evaluator (services.h).
struct aLambda : Anyval {};

// A cell of a list of arguments, opaque to packs.
struct Cons {
    Anyval* value;
    Cons* next;

    // Makes a cell. On failure it returns null or throws.
    EFI_HOST static Cons* mk(IqrAllocator* allocator, Anyval* value, Cons* next);
};
