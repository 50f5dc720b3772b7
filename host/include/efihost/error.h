// The exceptions of the host.
#pragma once

#include <stdexcept>
#include <string>

#include "efi/platform.h"

namespace efihost {

// A failed call: the pack returned an error value, or the host could not make the call.
// Its text reads `dwt: must be real array (argument 1: data)`.
class EFI_HOST Error : public std::runtime_error {
 public:
    Error(std::string function, std::string message, int argument, std::string argumentName = "");

    const std::string& function() const { return function_; }
    const std::string& message() const { return message_; }
    // The 1-based position of the argument at fault; 0: the call as a whole.
    int argument() const { return argument_; }
    // Its name; empty where the host does not know it.
    const std::string& argumentName() const { return argumentName_; }

 private:
    std::string function_;
    std::string message_;
    int argument_;
    std::string argumentName_;
};

// A library that does not exist or is not a function pack.
class EFI_HOST LoadError : public std::runtime_error {
 public:
    using std::runtime_error::runtime_error;
};

}  // namespace efihost
