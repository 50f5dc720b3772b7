#include "faults.h"

#if defined(_WIN32)

#include <windows.h>

#include <atomic>
#include <utility>

#include "efi/faults.h"

// Written in assembly for what it tells the unwinder: that it was entered by a fault. Its return
// address is the faulting instruction itself, where a call's would be the one after it. What the
// x87 unit holds at a fault is lost; its control word stays.
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

// Of the compiler's run-time, which declares it nowhere.
extern "C" const void* _Unwind_Find_FDE(void* instruction, void* (*bases)[3]);

namespace {

std::atomic<DWORD> callingThread{0};  // 0: no call is in progress
DWORD faultCode = 0;                  // of the last fault of that thread
DWORD withheldCode = 0;               // of the last that was not thrown

bool isFloatingPoint(DWORD code) {
    return EXCEPTION_FLT_DENORMAL_OPERAND <= code && code <= EXCEPTION_FLT_UNDERFLOW;
}

// What an instruction can be at fault for. Not among them: the debugger's breakpoints and steps, and
// the end of the stack, where there is no room to throw.
bool isFault(DWORD code) {
    const bool isArithmetic = EXCEPTION_ARRAY_BOUNDS_EXCEEDED <= code && code <= EXCEPTION_PRIV_INSTRUCTION;
    return isArithmetic || code == EXCEPTION_ACCESS_VIOLATION || code == EXCEPTION_IN_PAGE_ERROR ||
           code == EXCEPTION_DATATYPE_MISALIGNMENT || code == EXCEPTION_ILLEGAL_INSTRUCTION;
}

// What the unwinder knows of the function that an instruction lies in; null when it knows nothing.
const void* unwindingOf(DWORD instruction) {
    void* bases[3] = {};
    return _Unwind_Find_FDE(reinterpret_cast<void*>(instruction), &bases);
}

// The x87 unit reports a fault when it is used the next time, which a compiler does not know: it
// expects throws from those instructions alone that can be at fault, and from no function of the
// mathematics library. Within the function where the fault arose, it counts for the instruction that
// is at fault; elsewhere it cannot be thrown.
bool goBackToOrigin(CONTEXT& context) {
    const DWORD origin = context.FloatSave.ErrorOffset;
    const void* reporting = unwindingOf(context.Eip);
    if (!reporting || reporting != unwindingOf(origin)) return false;
    context.Eip = origin;
    return true;
}

// Lets the thread go on as if nothing trapped. The fault stays in the status word.
void withhold(CONTEXT& context) {
    constexpr WORD all = 0x3f;
    withheldCode = faultCode;
    context.FloatSave.ControlWord |= all;
    context.ExtendedRegisters[0] |= all;
}

// Has the thread go on in efihostEnterFault, as if the faulting instruction had called that.
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

// Installed for as long as the library is loaded.
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
