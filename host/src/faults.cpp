#include "faults.h"

#if defined(_WIN32)

#include <windows.h>

#include <atomic>
#include <utility>

#include "efi/faults.h"

// In assembly, as it must tell the unwinder that a fault led here: its return address is the faulting
// instruction itself, not the one after it. The registers of the x87 unit are lost; its control word
// is kept.
asm(R"(
    .text
_efihostEnterFault:
    .cfi_startproc
    .cfi_signal_frame
    subl $4, %esp
    .cfi_adjust_cfa_offset 4
    fnstcw (%esp)
    fninit
    fldcw (%esp)
    call _efihostThrowFault
    .cfi_endproc
)");

extern "C" void efihostEnterFault();

// Part of the compiler's run-time, which has no header for it.
extern "C" const void* _Unwind_Find_FDE(void* instruction, void* (*bases)[3]);

namespace {

std::atomic<DWORD> callingThread{0};  // 0: no call is in progress
DWORD faultCode = 0;                  // of the last fault of that thread
DWORD withheldCode = 0;               // of the last that was not thrown

bool isFloatingPoint(DWORD code) {
    return EXCEPTION_FLT_DENORMAL_OPERAND <= code && code <= EXCEPTION_FLT_UNDERFLOW;
}

// Not among the faults: the debugger's breakpoints and steps, and the end of the stack, where there is
// no room to throw.
bool isFault(DWORD code) {
    const bool isArithmetic = EXCEPTION_ARRAY_BOUNDS_EXCEEDED <= code && code <= EXCEPTION_PRIV_INSTRUCTION;
    return isArithmetic || code == EXCEPTION_ACCESS_VIOLATION || code == EXCEPTION_IN_PAGE_ERROR ||
           code == EXCEPTION_DATATYPE_MISALIGNMENT || code == EXCEPTION_ILLEGAL_INSTRUCTION;
}

// The unwinder's record of the function around an instruction, or null.
const void* unwindingOf(DWORD instruction) {
    void* bases[3] = {};
    return _Unwind_Find_FDE(reinterpret_cast<void*>(instruction), &bases);
}

// The x87 unit reports a fault when it is next used. A compiler does not know that: it expects throws
// only from instructions that can fault, and none from the mathematics library. So a fault that is
// reported in the function where it arose is thrown from its own instruction, and no other is thrown.
bool goBackToOrigin(CONTEXT& context) {
    const DWORD origin = context.FloatSave.ErrorOffset;
    const void* reporting = unwindingOf(context.Eip);
    if (!reporting || reporting != unwindingOf(origin)) return false;
    context.Eip = origin;
    return true;
}

// Continues the thread with all faults masked. This one stays in the status word.
void withhold(CONTEXT& context) {
    constexpr WORD all = 0x3f;
    withheldCode = faultCode;
    context.FloatSave.ControlWord |= all;
    context.ExtendedRegisters[0] |= all;
}

// Continues the thread in efihostEnterFault, as if the faulting instruction had called it.
void divert(CONTEXT& context) {
    context.Esp -= sizeof(DWORD);
    *reinterpret_cast<DWORD*>(context.Esp) = context.Eip;
    context.Eip = reinterpret_cast<DWORD>(&efihostEnterFault);
}

LONG CALLBACK translate(EXCEPTION_POINTERS* exception) {
    const EXCEPTION_RECORD& record = *exception->ExceptionRecord;
    if (GetCurrentThreadId() != callingThread || !isFault(record.ExceptionCode)) {
        return EXCEPTION_CONTINUE_SEARCH;
    }
    faultCode = record.ExceptionCode;
    CONTEXT& context = *exception->ContextRecord;
    if (isFloatingPoint(faultCode) && !goBackToOrigin(context)) {
        withhold(context);
    } else {
        divert(context);
    }
    return EXCEPTION_CONTINUE_EXECUTION;
}

// Installed while the library is loaded.
struct Translator {
    Translator() : handle(AddVectoredExceptionHandler(1, &translate)) {}
    ~Translator() { RemoveVectoredExceptionHandler(handle); }
    Translator(const Translator&) = delete;
    Translator& operator=(const Translator&) = delete;

    void* handle;
};

const Translator translator;

}  // namespace

extern "C" [[noreturn, gnu::used]] void efihostThrowFault() {
    throw SE_FPE_Exception(0, faultCode);
}

namespace efihost {

FaultTranslation::FaultTranslation()
    : outerThread_(callingThread.exchange(GetCurrentThreadId())),
      outerWithheld_(std::exchange(withheldCode, 0)) {}

FaultTranslation::~FaultTranslation() {
    withheldCode = outerWithheld_;
    callingThread = outerThread_;
}

void forgetWithheldFault() {
    withheldCode = 0;
}

void throwWithheldFault() {
    asm volatile("fwait");
    if (withheldCode != 0) throw SE_FPE_Exception(0, std::exchange(withheldCode, 0));
}

}  // namespace efihost

#else

namespace efihost {

FaultTranslation::FaultTranslation() = default;
FaultTranslation::~FaultTranslation() = default;

void forgetWithheldFault() {}
void throwWithheldFault() {}

}  // namespace efihost

#endif
