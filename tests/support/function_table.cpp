#include "support/function_table.h"

#include <algorithm>
#include <map>

namespace {

// A class name as the common C++ ABI writes it: its length, then the name.
std::string_view mangledClass(char letter) {
    static const std::map<char, std::string_view> classes = {
        {'S', "8aComplex"}, {'T', "7aString"}, {'M', "7aMatrix"}, {'V', "7aVector"},
        {'F', "7aLambda"},  {'A', "6Anyval"},  {'X', "6Anyval"},
    };
    return classes.at(letter);
}

}  // namespace

// A pointer to a class that has been named before is written as the number of that pointer: S_ and
// S0_ are the context and the pointer to it, S1_ and S2_ the next class and the pointer to it, ...
std::string exportedName(std::string_view function, std::string_view arguments) {
    std::string name = "_Z";
    name.append(std::to_string(function.size())).append(function).append("P14EfiCallContext");
    std::vector<std::string_view> seen;
    for (const char letter : arguments) {
        if (letter == '#') return name + "iz";
        const std::string_view type = mangledClass(letter);
        const auto known = std::ranges::find(seen, type);
        if (known != seen.end()) {
            name.append("S").append(std::to_string(2 * (known - seen.begin()) + 2)).append("_");
        } else {
            seen.push_back(type);
            name.append("P").append(type);
        }
    }
    return name;
}
