// User functions of one real variable, as the pack's searches call them.
#pragma once

#include "efi/host.h"
#include "frame/real_function.h"

// Calls a user function through the host's evaluator, and keeps it alive meanwhile. What is no
// scalar counts as 0, an imaginary part is ignored; after an interruption every value is 0 and the
// host is not called any more.
class double_to_double_lambda final : public double_to_double_func {
 public:
    double_to_double_lambda(EfiCallContext* context, aLambda* function);
    ~double_to_double_lambda();
    double_to_double_lambda(const double_to_double_lambda&) = delete;
    double_to_double_lambda& operator=(const double_to_double_lambda&) = delete;

    // Whether the host has rooted the function; without that it must not be called.
    bool rooted() const { return cell != nullptr; }

    double evaluate(const double& x) override;
    bool failed() override;

 private:
    EfiCallContext* context;
    EfiRootSet* roots = nullptr;
    Anyval** cell = nullptr;
    Anyval* result = nullptr;
    bool interruptedOnce = false;
    aComplex argument{};
};
