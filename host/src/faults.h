// Faults of the processor during a call of a pack.
#pragma once

namespace efihost {

// While one lives, faults of the thread that made it (a division by zero, an access violation) are
// thrown as SE_FPE_Exception where they happen, with the platform's code. Calls do not overlap, so
// that only nested ones live at a time, all on one thread. Without effect where the platform
// reports faults otherwise.
class FaultTranslation {
 public:
    FaultTranslation();
    ~FaultTranslation();
    FaultTranslation(const FaultTranslation&) = delete;
    FaultTranslation& operator=(const FaultTranslation&) = delete;

#if defined(_WIN32)
 private:
    unsigned long outer_;
#endif
};

}  // namespace efihost
