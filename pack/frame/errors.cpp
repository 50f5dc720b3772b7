#include "frame/errors.h"

#include <array>
#include <cstddef>

namespace undula {

namespace {

constexpr std::array<const char*, 23> errorTexts = {
    nullptr,
    "interrupted",
    "must be integer",
    "must be even integer",
    "must be positive integer",
    "filter unimplemented",
    "out of memory",
    "invalid level",
    "invalid subband dimensions",
    "filter too long",
    "too many columns",
    "filter not user defined",
    "invalid packet index",
    "not a symmetric wavelet",
    "interval wavelets unimplemented",
    "invalid packet basis",
    "invalid level in packet basis",
    "must be 1 dimensional packet basis",
    "must be 2 dimensional packet basis",
    "invalid packet table",
    "invalid dimension",
    "internal fft error",
    "must be matrix",
};

struct ExceptionText {
    std::uint32_t code;
    const char* text;
};

constexpr ExceptionText exceptionTexts[] = {
    {0xC000008E, "singularity"},
    {0xC0000090, "floating point error"},
    {0xC0000091, "overflow"},
    {0xC000008D, "EXCEPTION_FLT_DENORMAL_OPERAND"},
    {0xC000008F, "EXCEPTION_FLT_INEXACT_RESULT"},
    {0xC0000092, "EXCEPTION_FLT_STACK_CHECK"},
    {0xC0000093, "EXCEPTION_FLT_UNDERFLOW"},
    {0xC0000094, "EXCEPTION_INT_DIVIDE_BY_ZERO"},
    {0xC0000095, "EXCEPTION_INT_OVERFLOW"},
    {0xC0000096, "EXCEPTION_PRIV_INSTRUCTION"},
    {0xC00000FD, "EXCEPTION_STACK_OVERFLOW"},
    {0x80000001, "EXCEPTION_GUARD_PAGE"},
    {0x80000002, "EXCEPTION_DATATYPE_MISALIGNMENT"},
    {0x80000003, "EXCEPTION_BREAKPOINT"},
    {0x80000004, "EXCEPTION_SINGLE_STEP"},
    {0xC0000005, "EXCEPTION_ACCESS_VIOLATION"},
    {0xC0000006, "EXCEPTION_IN_PAGE_ERROR"},
    {0xC000001D, "EXCEPTION_ILLEGAL_INSTRUCTION"},
    {0xC0000025, "EXCEPTION_NONCONTINUABLE_EXCEPTION"},
    {0xC0000026, "EXCEPTION_INVALID_DISPOSITION"},
    {0xC000008C, "EXCEPTION_ARRAY_BOUNDS_EXCEEDED"},
};

}  // namespace

const char* errorText(std::int32_t code) {
    if (code < 0 || static_cast<std::size_t>(code) >= errorTexts.size()) return "unknown error";
    return errorTexts[static_cast<std::size_t>(code)];
}

const char* exceptionText(std::uint32_t code) {
    for (const ExceptionText& entry : exceptionTexts) {
        if (entry.code == code) return entry.text;
    }
    return "EXCEPTION_UNKNOWN_EXCEPTION";
}

}  // namespace undula
