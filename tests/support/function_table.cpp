#include "support/function_table.h"

#include <algorithm>
#include <map>

namespace {

// Reads forms such as M(M, A, O), the letter Z of which is a scalar that no user writes.
ListedFunction read(std::string_view name, std::string_view text) {
    ListedFunction function = {name, {}, {}};
    bool inside = false;
    for (const char c : text) {
        if (c == '(') {
            function.forms.emplace_back();
            function.workers.emplace_back();
        }
        inside = c == '(' || (inside && c != ')');
        if (!inside || c < 'A' || c > 'Z') continue;
        if (c != 'Z') function.forms.back() += c;
        function.workers.back() += c == 'O' ? 'M' : c == 'Z' ? 'S' : c;
    }
    return function;
}

// A class name as the common C++ ABI writes it: its length, then the name.
std::string_view mangledClass(char letter) {
    static const std::map<char, std::string_view> classes = {
        {'S', "8aComplex"}, {'T', "7aString"}, {'M', "7aMatrix"}, {'V', "7aVector"},
        {'F', "7aLambda"},  {'A', "6Anyval"},  {'X', "6Anyval"},
    };
    return classes.at(letter);
}

}  // namespace

const std::vector<ListedFunction>& listedFunctions() {
#define FIXED(name, ...) read(#name, #__VA_ARGS__),
#define OPTIONAL FIXED
#define SHORTENED FIXED
#define UNREACHED(...)
    static const std::vector<ListedFunction> functions = {
#include "frame/functions.def"
    };
    return functions;
}

// A pointer to a class that has been named before is written as the number of that pointer: S_ and
// S0_ are the context and the pointer to it, S1_ and S2_ the next class and the pointer to it, ...
std::string exportedName(std::string_view function, std::string_view arguments) {
    std::string name = "_Z";
    name.append(std::to_string(function.size())).append(function).append("P14EfiCallContext");
    std::vector<std::string_view> seen;
    for (const char letter : arguments) {
        if (letter == '#') return name + "iz";
        const std::string_view type = mangledClass(letter);
        const auto known = std::find(seen.begin(), seen.end(), type);
        if (known != seen.end()) {
            name.append("S").append(std::to_string(2 * (known - seen.begin()) + 2)).append("_");
        } else {
            seen.push_back(type);
            name.append("P").append(type);
        }
    }
    return name;
}
