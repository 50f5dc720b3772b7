// What a host reads from a function pack: the table of functions and the registration entries.
#pragma once

#include <cstdint>

#include "efi/host.h"

// The name of a function, as a string value of the host.
struct sString {
    std::int32_t kind;  // 3, the string tag
    const char* text;
    std::int32_t length;  // with the terminating NUL
    std::int32_t reserved;
};

// The entry of a row, to be cast to its exact type before it is called:
//   n fixed arguments   Anyval* (*)(EfiCallContext*, Anyval* x n)
//   Variable_to_Any     Anyval* (*)(EfiCallContext*, int count, ...), count pointers to Anyval
// The host owns the result, which is an error value (tag 0) where the call failed.
using EfiEntry = void (*)();

// A row of the table.
struct EfiFunction {
    sFunctionInfo* signature;  // the calling shape: one of the host's objects (host.h)
    std::uint32_t reserved1;
    std::uint8_t flag;
    const sString* name;
    std::uint32_t reserved2;
    EfiEntry entry;
    std::uint32_t reserved3;
};

extern "C" {
EFI_PACK extern EfiFunction theEfi[];
EFI_PACK extern const std::int32_t numFuncs;

// Register the pack with the host, and remove it again. Both return the host's status.
EFI_PACK int DllRegisterServer();
EFI_PACK int DllUnregisterServer();
}
