// What the host lets a pack do during a call: make scalars, keep a function alive, call a
// function, and ask whether the user wants to stop.
//
// The objects are of the COM kind: their first word points to a table of operations, and the
// place of an operation in the table is what host and pack agree on. The numbered gaps belong to
// the host. Everything here is used on the calling thread, during the call, and only then. Any
// operation may throw one of three things: a message (const char*), an error value (aError*) or
// an SE_FPE_Exception (faults.h).
#pragma once

#include <cstdint>

#include "efi/values.h"

// A 128-bit identifier.
struct EfiGuid {
    std::uint32_t data1;
    std::uint16_t data2;
    std::uint16_t data3;
    std::uint8_t data4[8];
};

// The status by which an evaluation or a poll says that the user has interrupted.
inline constexpr std::int32_t efiInterrupted = 1;

// Operations 1 to 3 of every object.
class EfiObject {
 public:
    // Stores the interface in `out`. Returns a status that is negative on failure.
    virtual std::int32_t EFI_OPERATION QueryInterface(const EfiGuid& interfaceId, void** out) = 0;
    virtual std::uint32_t EFI_OPERATION AddRef() = 0;
    virtual std::uint32_t EFI_OPERATION Release() = 0;

 protected:
    ~EfiObject() = default;
};

class IqrAllocator : public EfiObject {
 public:
    virtual void EFI_OPERATION hostOperation4() {}
    virtual void EFI_OPERATION hostOperation5() {}
    virtual void EFI_OPERATION hostOperation6() {}
    virtual void EFI_OPERATION hostOperation7() {}
    virtual void EFI_OPERATION hostOperation8() {}
    // 9: stores a new scalar in `out`, or null when there is no memory. The caller fills it in,
    // tag included.
    virtual void EFI_OPERATION newScalar(aComplex** out) = 0;

 protected:
    ~IqrAllocator() = default;
};

// Cells that keep values alive. It comes from the allocator's QueryInterface with efiRootSetId, and
// the caller releases it.
class EfiRootSet : public EfiObject {
 public:
    virtual void EFI_OPERATION hostOperation4() {}
    virtual void EFI_OPERATION hostOperation5() {}
    virtual void EFI_OPERATION hostOperation6() {}
    virtual void EFI_OPERATION hostOperation7() {}
    virtual void EFI_OPERATION hostOperation8() {}
    virtual void EFI_OPERATION hostOperation9() {}
    virtual void EFI_OPERATION hostOperation10() {}
    // 11: stores a cell of the host in `out`, or null when there is no memory. The value whose
    // pointer the caller puts into the cell lives until the cell is removed.
    virtual void EFI_OPERATION addRoot(Anyval*** out) = 0;
    // 12: removes the cell.
    virtual void EFI_OPERATION removeRoot(Anyval** cell) = 0;

 protected:
    ~EfiRootSet() = default;
};

class EfiEvaluator : public EfiObject {
 public:
    // 4: calls a function with the listed arguments. Status 1: interrupted; any other: the result
    // is set. Null counts as a value of no kind. The host may free the list when this returns, and
    // with it the matrices that the pack made for it, except those that the result is or contains.
    virtual std::int32_t EFI_OPERATION applyList(aLambda* function, Cons* arguments, Anyval** result) = 0;
    virtual void EFI_OPERATION hostOperation5() {}
    virtual void EFI_OPERATION hostOperation6() {}
    virtual void EFI_OPERATION hostOperation7() {}
    virtual void EFI_OPERATION hostOperation8() {}
    virtual void EFI_OPERATION hostOperation9() {}
    virtual void EFI_OPERATION hostOperation10() {}
    // 11: called with 1. Returns 1 when the user wants to stop.
    virtual std::int32_t EFI_OPERATION pollInterrupt(std::int32_t one) = 0;
    virtual void EFI_OPERATION hostOperation12() {}
    // 13: as applyList, with one argument. The result stays valid until the next evaluation.
    virtual std::int32_t EFI_OPERATION applyOne(aLambda* function, Anyval* argument, Anyval** result) = 0;

 protected:
    ~EfiEvaluator() = default;
};

// The first argument of every entry of a pack, valid for that call.
struct EfiCallContext {
    IqrAllocator* allocator;
    EfiEvaluator* evaluator;
};
