// Faults of the processor during a call of a pack.
#pragma once

namespace efihost {

// While one lives, faults of the thread that made it (a division by zero, an access violation) are
// thrown as SE_FPE_Exception where they happen, with the platform's code. A fault of the arithmetic
// that is reported where it cannot be thrown is withheld: it stays in the status word, and faults
// are masked from then on.
//
// Calls do not overlap, so those that live at a time are nested, on one thread. This and the functions
// below do nothing where the processor does not trap.
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

// Throws the fault that was withheld since forgetWithheldFault(), for code that would not notice it.
void forgetWithheldFault();
void throwWithheldFault();

}  // namespace efihost
