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

// What is wrong with a value that is not of the kind.
Code mismatch(const Anyval* value, Kind kind) {
    const int tag = tagOf(value);
    switch (kind) {
        case Kind::Scalar:
            return tag == TagScalar ? Code::None : Code::NonScalarValue;
        case Kind::String:
            return tag == TagString ? Code::None : Code::MustBeString;
        case Kind::Array:
            return tag == TagArray ? Code::None : Code::MustBeArray;
        case Kind::Vector:
            return tag == TagArray && static_cast<const aMatrix*>(value)->cols == 1 ? Code::None
                                                                                    : Code::MustBeVector;
        case Kind::Function:
            return tag == TagFunction || tag == TagFunctionAlt ? Code::None : Code::MustBeFunction;
        case Kind::ScalarOrArray:
        case Kind::OptionalArray:
            return tag == TagScalar || tag == TagArray ? Code::None : Code::MustBeScalarOrArray;
        case Kind::Zero:
            break;
    }
    return Code::None;
}

Failure checkKinds(const Call& call) {
    const auto firstFailure = [&call](auto complaint) {
        int position = 0;
        for (int i = 0; i < call.parameters; ++i) {
            if (call.kinds[i] == Kind::Zero) continue;
            const Code code = complaint(call.given[position++], call.kinds[i]);
            if (code != Code::None) return Failure(code, position);
        }
        return Failure();
    };
    const auto illegality = [](const Anyval* value, Kind kind) {
        return isIllegal(tagOf(value), kind) ? Code::IllegalContext : Code::None;
    };
    if (auto failure = firstFailure(illegality)) return failure;
    return firstFailure(mismatch);
}

// A scalar as a 1 x 1 array.
Result<aMatrix*> asMatrix(EfiCallContext* context, const aComplex* scalar) {
    auto re = newElements(1, 1);
    if (!re) return Code::OutOfMemory;
    re[0] = scalar->re;
    if (scalar->im == 0.0) return newMatrix(context, 1, 1, re);
    auto im = newElements(1, 1);
    if (!im) return Code::OutOfMemory;
    im[0] = scalar->im;
    return newMatrix(context, 1, 1, re, im);
}

// What the worker receives in place of a given value.
HostValue converted(EfiCallContext* context, Anyval* given, Kind kind) {
    if (kind == Kind::Zero) return toHost(context, newScalar(context, 0.0));
    if (kind == Kind::OptionalArray && given->tag == TagScalar)
        return toHost(context, asMatrix(context, static_cast<const aComplex*>(given)));
    return {given};
}

// An error about a parameter becomes one about the argument that the user wrote for it, 0 for none.
Anyval* reposition(Anyval* result, const int* positions, int count) {
    if (!isError(result)) return result;
    auto* error = static_cast<aError*>(result);
    if (error->argIndex >= 1 && error->argIndex <= count) error->argIndex = positions[error->argIndex - 1];
    return result;
}

Anyval* checkAndInvoke(const Call& call) {
    if (auto failure = checkKinds(call)) return makeError(call.context, failure);

    Anyval* arguments[mostArguments];
    int positions[mostArguments];
    int position = 0;
    for (int i = 0; i < call.parameters; ++i) {
        const bool written = call.kinds[i] != Kind::Zero;
        Anyval* given = written ? call.given[position++] : nullptr;
        positions[i] = written ? position : 0;
        arguments[i] = converted(call.context, given, call.kinds[i]);
        if (arguments[i] == nullptr || isError(arguments[i])) return arguments[i];
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
        return fault == nullptr ? result : makeError(context, fault, 0);
    } catch (const char* message) {
        return makeError(context, message, 0);
    } catch (aError* error) {
        return error;
    } catch (const SE_FPE_Exception& fault) {
        return makeError(context, exceptionText(fault.exceptionCode), 0);
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
    return makeError(forwarding.context, Code::WrongNumberOfArguments);
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
