// The question whether the user wants to stop, as arithmetic asks it.
#pragma once

namespace undula {

// One without a question never stops.
struct Poll {
    bool (*question)(void* host) = nullptr;
    void* host = nullptr;

    bool operator()() const { return question != nullptr && question(host); }
};

}  // namespace undula
