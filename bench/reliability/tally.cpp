#include "reliability/tally.h"

#include <cstdio>

namespace reliability {

namespace {

constexpr int Tally::*counts[] = {&Tally::calls, &Tally::ownMemory, &Tally::hostMemory,
                                  &Tally::polls, &Tally::thrown,    &Tally::callsWithin};

void printRow(const std::string& name, const Tally& tally) {
    std::printf("| %s |", name.c_str());
    for (const auto count : counts) std::printf(" %d |", tally.*count);
    std::puts("");
}

}  // namespace

void print(const std::vector<std::string>& functions, const std::map<std::string, Tally>& tallies) {
    std::puts(
        "| function | calls | own memory | host's memory | polls | throws | calls within |\n"
        "|---|---|---|---|---|---|---|");
    Tally sum;
    for (const std::string& function : functions) {
        const auto found = tallies.find(function);
        const Tally tally = found == tallies.end() ? Tally() : found->second;
        printRow("`" + function + "`", tally);
        for (const auto count : counts) sum.*count += tally.*count;
    }
    printRow("all", sum);
}

}  // namespace reliability
