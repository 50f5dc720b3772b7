// The object that a host throws into a call when the processor reports a fault.
#pragma once

#include <cstdint>

#include "efi/platform.h"

class EFI_THROWN SE_FPE_Exception {
 public:
    SE_FPE_Exception(std::uint32_t ofHost, std::uint32_t code) : hostField(ofHost), exceptionCode(code) {}

    std::uint32_t hostField;
    std::uint32_t exceptionCode;  // the platform's structured-exception code, such as 0xC000008E
};
