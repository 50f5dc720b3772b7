#include "efihost/error.h"

namespace efihost {

namespace {

std::string describe(const std::string& function, const std::string& message, int argument,
                     const std::string& argumentName) {
    std::string text = function + ": " + message;
    if (argument == 0) return text;
    const std::string name = argumentName.empty() ? "" : ": " + argumentName;
    return text + " (argument " + std::to_string(argument) + name + ")";
}

}  // namespace

Error::Error(std::string function, std::string message, int argument, std::string argumentName)
    : std::runtime_error(describe(function, message, argument, argumentName)),
      function_(std::move(function)),
      message_(std::move(message)),
      argument_(argument),
      argumentName_(std::move(argumentName)) {}

}  // namespace efihost
