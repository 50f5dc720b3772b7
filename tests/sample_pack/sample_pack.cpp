// A function pack of a few lines: its functions show a host what they were given.
#include "efi/pack.h"

namespace {

Anyval* refuse(EfiCallContext* context, Anyval*) {
    return mkError(context, "refused", 1, 0);
}

Anyval* nothing(EfiCallContext*, Anyval*) {
    return nullptr;
}

Anyval* identity(EfiCallContext*, Anyval* value) {
    return value;
}

// The function's result for an argument; 0 where the evaluation was interrupted, as if the pack
// did not care.
Anyval* evaluate(EfiCallContext* context, Anyval* function, Anyval* argument) {
    Anyval* result = nullptr;
    const int status = context->evaluator->applyOne(static_cast<aLambda*>(function), argument, &result);
    if (status != efiInterrupted) return result;
    aComplex* zero = nullptr;
    context->allocator->newScalar(&zero);
    zero->tag = TagScalar;
    zero->re = zero->im = 0.0;
    return zero;
}

// Polls until it is told to stop, or the given number of times.
Anyval* pollTimes(EfiCallContext* context, Anyval* times) {
    for (double n = static_cast<aComplex*>(times)->re; n > 0.0; n -= 1.0) {
        if (context->evaluator->pollInterrupt(1) == efiInterrupted) {
            return mkError(context, "interrupted", 0, 0);
        }
    }
    return times;
}

template <class Entry>
EfiFunction row(sFunctionInfo* shape, const sString& name, Entry* entry) {
    return {shape, 0, 0, &name, 0, reinterpret_cast<EfiEntry>(entry), 0};
}

const sString names[] = {{3, "refuse", 7, 0},
                         {3, "nothing", 8, 0},
                         {3, "identity", 9, 0},
                         {3, "evaluate", 9, 0},
                         {3, "poll", 5, 0}};

const EfiGuid packId = {0x5a3f0d11, 0x7e02, 0x4c66, {0x9b, 0x21, 0x04, 0xd8, 0x3c, 0x6e, 0xf1, 0x57}};

}  // namespace

EfiFunction theEfi[] = {row(Any_to_Any, names[0], refuse), row(Any_to_Any, names[1], nothing),
                        row(Any_to_Any, names[2], identity), row(Any_Any_to_Any, names[3], evaluate),
                        row(Any_to_Any, names[4], pollTimes)};
const std::int32_t numFuncs = 5;

int DllRegisterServer() {
    return RegisterEfiFunctionPack(theEfi, &packId);
}
int DllUnregisterServer() {
    return UnregisterEfiFunctionPack(&packId);
}
