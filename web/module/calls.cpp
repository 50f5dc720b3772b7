// The functions of the pack, and calls of them.
#include <algorithm>
#include <cmath>
#include <memory>
#include <new>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "efihost/error.h"
#include "efihost/host.h"
#include "entries.h"

// Both return NaN or null after they have called `noteThrow`, if JavaScript threw.
FROM_JAVASCRIPT(callFunction)
undula::Value* callFunctionOfJavaScript(int function, undula::Value* const* arguments, std::size_t count);
FROM_JAVASCRIPT(callRealFunction) double callRealFunctionOfJavaScript(int function, double x);

namespace {

using undula::Value;

struct Session {
    efihost::Pack pack;
    efihost::Host host;
};

Session& session() {
    static Session instance;
    return instance;
}

const efihost::Function& functionAt(std::size_t index) {
    return session().pack.functions()[index];
}

bool hasThrown = false;
bool wasNotFinite = false;

void rethrow() {
    if (std::exchange(hasThrown, false)) throw undula::ThrownInJavaScript();
}

// WebAssembly has no flags that would tell of a fault of the arithmetic. What is not finite, though all
// that it was made of is, comes from one.
bool isFault(std::span<const Value> arguments, const Value& result) {
    return !undula::userFunctionWasNotFinite() && !undula::isFinite(result) &&
           std::all_of(arguments.begin(), arguments.end(), undula::isFinite);
}

Value resultOf(const efihost::Function& function, std::span<const Value> arguments) {
    try {
        undula::userFunctionWasNotFinite();
        Value result = session().host.callRaw(function, arguments);
        return isFault(arguments, result) ? Value::error("floating point error", 0) : result;
    } catch (const efihost::Error& error) {
        return Value::error(error.message(), error.argument());
    } catch (const std::bad_alloc&) {
        return Value::error("out of memory", 0);
    }
}

}  // namespace

namespace undula {

Value callUserFunction(int function, const std::vector<Value>& arguments) {
    std::vector<Value> copies = arguments;
    std::vector<Value*> handles;
    handles.reserve(copies.size());
    for (Value& copy : copies) handles.push_back(&copy);
    const std::unique_ptr<Value> result(callFunctionOfJavaScript(function, handles.data(), handles.size()));
    rethrow();
    if (!result) throw std::bad_alloc();
    if (!isFinite(*result)) wasNotFinite = true;
    return *result;
}

double callRealFunction(int function, double x) {
    const double result = callRealFunctionOfJavaScript(function, x);
    rethrow();
    if (!std::isfinite(result)) wasNotFinite = true;
    return result;
}

bool userFunctionWasNotFinite() {
    return std::exchange(wasNotFinite, false);
}

}  // namespace undula

TO_JAVASCRIPT(noteThrow) void noteThrow() {
    hasThrown = true;
}

TO_JAVASCRIPT(numberOfFunctions) std::size_t numberOfFunctions() {
    return session().pack.functions().size();
}

TO_JAVASCRIPT(nameOf) const char* nameOf(std::size_t function) {
    return functionAt(function).name.data();
}

// -1: the number of arguments varies.
TO_JAVASCRIPT(arityOf) int arityOf(std::size_t function) {
    return functionAt(function).arity.value_or(-1);
}

TO_JAVASCRIPT(numberOfForms) std::size_t numberOfForms(std::size_t function) {
    return functionAt(function).forms.size();
}

TO_JAVASCRIPT(formOf) const char* formOf(std::size_t function, std::size_t form) {
    return functionAt(function).forms[form].data();
}

// An error is a result too. Null: a user's function has thrown, or there is no memory.
TO_JAVASCRIPT(call)
Value* call(std::size_t function, const Value* const* arguments, std::size_t count) {
    try {
        std::vector<Value> copies;
        for (const Value* argument : std::span(arguments, count)) copies.push_back(*argument);
        return new Value(resultOf(functionAt(function), copies));
    } catch (const undula::ThrownInJavaScript&) {
        return nullptr;
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
