#include "frame/errors.h"

namespace undula {

const char* messageOf(Code code) {
    switch (code) {
        case Code::None:
            return nullptr;
#define CODE(number, name, text) \
    case Code::name:             \
        return text;
#define MESSAGE(name, text) \
    case Code::name:        \
        return text;
#include "frame/errors.def"
    }
    return messageOf(Code::Unknown);
}

const char* exceptionText(std::uint32_t code) {
    switch (code) {
#define EXCEPTION(number, text) \
    case number:                \
        return text;
#include "frame/errors.def"
        default:
            return "EXCEPTION_UNKNOWN_EXCEPTION";
    }
}

}  // namespace undula
