// The functions of the pack and the letters of their arguments, as pack/frame/functions.def lists them.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// Letters: S scalar, T text, M matrix, V column, F function, A scalar or matrix passed on as it is, O
// scalar or matrix passed on as a matrix.
struct ListedFunction {
    std::string_view name;
    std::vector<std::string> forms;    // what a user writes, for each count of arguments
    std::vector<std::string> workers;  // what the exported workers take

    bool variadic() const { return forms.size() > 1; }
};

// In the order of the pack's rows.
const std::vector<ListedFunction>& listedFunctions();

// The name under which a compiler exports a function of the given arguments after the context:
// the letters above, X for a value of any kind, # for a count and any number of values.
std::string exportedName(std::string_view function, std::string_view arguments);
