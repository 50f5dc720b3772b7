// A real function of one real variable, as arithmetic calls it.
#pragma once

class double_to_double_func {
 public:
    virtual double evaluate(const double& x) = 0;
    // Whether a value so far was no real number, or the user has interrupted.
    virtual bool failed() = 0;

 protected:
    ~double_to_double_func() = default;
};
