// The question whether the user wants to stop, as arithmetic asks it.
#pragma once

#include <cstdint>

namespace undula {

// One without a question never stops.
struct Poll {
    bool (*question)(void* host) = nullptr;
    void* host = nullptr;

    bool operator()() const { return question != nullptr && question(host); }
};

// Asks a number of times in all, spread over the steps of some work.
class SpreadPolls {
 public:
    SpreadPolls(const Poll& question, std::uint64_t total, std::uint64_t stepCount)
        : poll(question), count(total), steps(stepCount) {}

    bool beforeStep() { return askUpTo(count * ++begun / steps); }
    bool atEnd() { return askUpTo(count); }

 private:
    bool askUpTo(std::uint64_t wanted) {
        while (asked < wanted) {
            ++asked;
            if (poll()) return true;
        }
        return false;
    }

    const Poll& poll;
    std::uint64_t count;
    std::uint64_t steps;
    std::uint64_t begun = 0;
    std::uint64_t asked = 0;
};

}  // namespace undula
