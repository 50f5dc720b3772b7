#include "frame/user_function.h"

#include "frame/floating_point.h"
#include "frame/host_services.h"

using undula::HostServiceScope;

namespace {

// Stands for the answer of a host that answered with nothing: a value of no kind.
Anyval nothing = {-1};

}  // namespace

double_to_double_lambda::double_to_double_lambda(EfiCallContext* callContext, aLambda* function)
    : context(callContext) {
    const HostServiceScope scope;
    void* found = nullptr;
    if (context->allocator->QueryInterface(efiRootSetId, &found) < 0 || found == nullptr) return;
    roots = static_cast<EfiRootSet*>(found);
    try {
        roots->addRoot(&cell);
    } catch (...) {
        roots->Release();
        throw;
    }
    if (cell != nullptr) *cell = function;
}

// What the function was called for is done: a host that fails to let go of it spoils no result.
double_to_double_lambda::~double_to_double_lambda() {
    if (roots == nullptr) return;
    const HostServiceScope scope;
    try {
        if (cell != nullptr) roots->removeRoot(cell);
    } catch (...) {
        static_cast<void>(cell);
    }
    try {
        roots->Release();
    } catch (...) {
        static_cast<void>(roots);
    }
}

double double_to_double_lambda::evaluate(const double& x) {
    if (interruptedOnce || !rooted()) return 0.0;
    argument = undula::scalarOf(x);  // whole, as the user may have written to the last one
    const HostServiceScope scope;
    auto* function = static_cast<aLambda*>(*cell);
    if (context->evaluator->applyOne(function, &argument, &result) == efiInterrupted) {
        interruptedOnce = true;
        return 0.0;
    }
    if (result == nullptr) result = &nothing;
    return result->tag == TagScalar ? static_cast<aComplex*>(result)->re : 0.0;
}

bool double_to_double_lambda::failed() {
    if (interruptedOnce) return true;
    if (result == nullptr) return false;
    return result->tag != TagScalar || static_cast<aComplex*>(result)->im != 0.0;
}
