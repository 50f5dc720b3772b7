// Faults of the processor during a call of a pack.
#pragma once

namespace efihost {

// While one lives, faults of the thread that made it (a division by zero, an access violation) are
// thrown as SE_FPE_Exception where they happen, with the platform's code. A fault of the arithmetic
// that comes to light where it cannot be thrown is withheld: it stays in the status word, and traps
// no more.
//
// Calls do not overlap, so that only nested ones live at a time, all on one thread. Without effect
// where the platform reports faults otherwise, like the functions below.
class FaultTranslation {
 public:
    FaultTranslation();
    ~FaultTranslation();
    FaultTranslation(const FaultTranslation&) = delete;
    FaultTranslation& operator=(const FaultTranslation&) = delete;

#if defined(_WIN32)
 private:
    unsigned long outerThread_;
    unsigned long outerWithheld_;
#endif
};

// Throws the fault that has been withheld since forgetWithheldFault(), for code that hears of its
// faults in no other way.
void forgetWithheldFault();
void throwWithheldFault();

}  // namespace efihost
