#include "efihost/error.h"

namespace efihost {

namespace {

std::string describe(const std::string& function, const std::string& message, int argument) {
    const std::string text = function + ": " + message;
    return argument == 0 ? text : text + " (argument " + std::to_string(argument) + ")";
}

}  // namespace

Error::Error(std::string function, std::string message, int argument)
    : std::runtime_error(describe(function, message, argument)),
      function_(std::move(function)),
      message_(std::move(message)),
      argument_(argument) {}

}  // namespace efihost
