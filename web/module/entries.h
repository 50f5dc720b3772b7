// What the module shows to JavaScript. Values go through it as handles: pointers to Value that JavaScript
// frees. A null handle where a value was to be made says that there is no memory, or can be no such value.
#pragma once

#include "efihost/value.h"

#define FROM_JAVASCRIPT(name) extern "C" [[clang::import_module("undula"), clang::import_name(#name)]]
#define TO_JAVASCRIPT(name) extern "C" [[clang::export_name(#name)]]

namespace undula {

using efihost::Value;

// The handle of what `make` returns.
template <class Make>
Value* handleOf(Make make) {
    try {
        return new Value(make());
    } catch (const std::exception&) {
        return nullptr;
    }
}

// A user's function has thrown: JavaScript keeps what, and throws it again when the call has ended.
struct ThrownInJavaScript {};

// A call of a user's function during a call of the pack.
Value callUserFunction(int function, const std::vector<Value>& arguments);
double callRealFunction(int function, double x);

// Whether a user's function has returned NaN or an infinity since this was last asked.
bool userFunctionWasNotFinite();

// Whether a value holds no NaN and no infinity.
bool isFinite(const Value& value);

}  // namespace undula
