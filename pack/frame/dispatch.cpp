#include "frame/dispatch.h"

#include "efi/faults.h"
#include "frame/floating_point.h"
#include "frame/host_services.h"

namespace undula {

namespace {

bool isIllegal(int tag, Kind kind) {
    if (tag == TagUnsupported) return true;
    return kind != Kind::Function && (tag == TagFunction || tag == TagFunctionAlt);
}

// The complaint about a value that is not of the kind; null when it is.
const char* mismatch(const Anyval* value, Kind kind) {
    const int tag = tagOf(value);
    switch (kind) {
        case Kind::Scalar:
            return tag == TagScalar ? nullptr : "non-scalar value";
        case Kind::String:
            return tag == TagString ? nullptr : "must be string";
        case Kind::Array:
            return tag == TagArray ? nullptr : "must be array";
        case Kind::Vector:
            return tag == TagArray && static_cast<const aMatrix*>(value)->cols == 1 ? nullptr
                                                                                    : "must be vector";
        case Kind::Function:
            return tag == TagFunction || tag == TagFunctionAlt ? nullptr : "must be function";
        case Kind::ScalarOrArray:
        case Kind::OptionalArray:
            return tag == TagScalar || tag == TagArray ? nullptr : "EfiMustBeScalarOrArray";
        case Kind::Zero:
            break;
    }
    return nullptr;
}

Failure checkKinds(const Call& call) {
    const auto firstFailure = [&call](auto complaint) {
        int position = 0;
        for (int i = 0; i < call.parameters; ++i) {
            if (call.kinds[i] == Kind::Zero) continue;
            const char* message = complaint(call.given[position++], call.kinds[i]);
            if (message != nullptr) return Failure(message, position);
        }
        return Failure();
    };
    const auto illegality = [](const Anyval* value, Kind kind) {
        return isIllegal(tagOf(value), kind) ? "illegal context" : nullptr;
    };
    if (auto failure = firstFailure(illegality)) return failure;
    return firstFailure(mismatch);
}

// A scalar as a 1 x 1 array; null when there is no memory.
aMatrix* asMatrix(EfiCallContext* context, const aComplex* scalar) {
    auto re = newElements(1, 1);
    if (!re) return nullptr;
    re[0] = scalar->re;
    if (scalar->im == 0.0) return newMatrix(context, 1, 1, re);
    auto im = newElements(1, 1);
    if (!im) return nullptr;
    im[0] = scalar->im;
    return newMatrix(context, 1, 1, re, im);
}

// What the worker receives in place of a given value; null when there is no memory.
Anyval* converted(EfiCallContext* context, Anyval* given, Kind kind) {
    if (kind == Kind::Zero) return newScalar(context, 0.0);
    if (kind == Kind::OptionalArray && given->tag == TagScalar) {
        return asMatrix(context, static_cast<const aComplex*>(given));
    }
    return given;
}

Anyval* checkAndInvoke(const Call& call) {
    if (auto failure = checkKinds(call)) return fail(call.context, failure);

    Anyval* arguments[mostArguments];
    int positions[mostArguments];
    int position = 0;
    for (int i = 0; i < call.parameters; ++i) {
        const bool written = call.kinds[i] != Kind::Zero;
        Anyval* given = written ? call.given[position++] : nullptr;
        positions[i] = written ? position : 0;
        arguments[i] = converted(call.context, given, call.kinds[i]);
        if (arguments[i] == nullptr) return fail(call.context, outOfMemory());
        if (isError(arguments[i])) return arguments[i];
    }
    Anyval* result = call.invoke(call.worker, call.context, arguments);
    return reposition(result, positions, call.parameters);
}

// Runs an action between the caller's floating-point state and the pack's, and turns what the host
// may throw into a result. Workers are reached through pointers only: arithmetic that a compiler could
// see here might move past the fault test.
template <class Data>
Anyval* inFrame(EfiCallContext* context, Anyval* (*action)(const Data&), const Data& data) {
    const FloatingPointFrame frame;
    try {
        Anyval* result = action(data);
        const char* fault = pendingFault();
        return fault == nullptr ? result : fail(context, {fault, 0});
    } catch (const char* message) {
        return fail(context, {message, 0});
    } catch (aError* error) {
        return error;
    } catch (const SE_FPE_Exception& fault) {
        return fail(context, {exceptionText(fault.exceptionCode), 0});
    }
}

struct Forwarding {
    EfiCallContext* context;
    int count;
    Anyval** arguments;
    const FixedDispatcher* dispatchers;
    int dispatcherCount;
};

Anyval* chooseDispatcher(const Forwarding& forwarding) {
    for (int i = 0; i < forwarding.dispatcherCount; ++i) {
        const FixedDispatcher& dispatcher = forwarding.dispatchers[i];
        if (dispatcher.count == forwarding.count)
            return dispatcher.call(forwarding.context, forwarding.arguments);
    }
    return fail(forwarding.context, {"Wrong number of Arguments", 0});
}

}  // namespace

Anyval* run(const Call& call) {
    return inFrame(call.context, &checkAndInvoke, call);
}

Anyval* forward(EfiCallContext* context, int count, Anyval** arguments, const FixedDispatcher* dispatchers,
                int dispatcherCount) {
    const Forwarding forwarding = {context, count, arguments, dispatchers, dispatcherCount};
    return inFrame(context, &chooseDispatcher, forwarding);
}

}  // namespace undula
