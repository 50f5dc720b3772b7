// What the tests of robustness have made to fail, by function: the table of docs/reliability.md.
#pragma once

#include <map>
#include <string>
#include <vector>

namespace reliability {

struct Tally {
    int calls = 0;        // forms of the function, and ways to call them
    int ownMemory = 0;    // allocations of the pack refused
    int hostMemory = 0;   // services refused for want of memory
    int polls = 0;        // answered by an interruption
    int thrown = 0;       // times that a service threw
    int callsWithin = 0;  // calls of the pack from within a service
};

// A line for each function, and their sum.
void print(const std::vector<std::string>& functions, const std::map<std::string, Tally>& tallies);

}  // namespace reliability
