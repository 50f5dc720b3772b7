// One call through every kind of trouble: each allocation of the pack refused, each service of the
// host without memory, an interruption at each poll, everything that a service may throw and
// something that it may not. After each, the message and index are as they must be, nothing has
// leaked, the caller's floating-point state is untouched, and the same call succeeds.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "support/pack.h"

struct RobustCall {
    std::string function;
    // The arguments. No number is given twice in a run, so that each can make the pack keep another
    // wavelet.
    std::function<std::vector<Value>(int variant)> arguments;
    // How often the call asks whether to stop.
    int polls = 0;
    // What may be said, besides "out of memory (0)", when the pack has no memory: "message (index)".
    std::string alternative = "out of memory (0)";
};

void expectRobust(const RobustCall& call);
// With the same arguments each time.
void expectRobust(const std::string& function, const std::vector<Value>& arguments, int polls = 0);

// The floating-point state of a caller who likes it unusual: rounds upward, flushes denormals to
// zero, has some flags raised. Put back to normal at the end. On Windows, where a call gives back
// the x87 unit's control word and no more, that word.
class UnusualCaller {
 public:
    UnusualCaller();
    ~UnusualCaller();
    UnusualCaller(const UnusualCaller&) = delete;
    UnusualCaller& operator=(const UnusualCaller&) = delete;

    // Whether all of it is as it was, bit by bit.
    bool undisturbed() const;

 private:
    unsigned state_;
};
