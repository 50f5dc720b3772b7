// The functions of the pack as its documentation lists them: the arguments that a user writes, and
// those of the exported workers behind them. Independent of the pack's own table.
#pragma once

#include <string>
#include <string_view>
#include <vector>

// Letters of arguments: S scalar, T text, M matrix, V column, F function, A scalar or matrix passed
// on as it is, O scalar or matrix passed on as a matrix.
struct DocumentedFunction {
    std::string_view name;
    std::vector<std::string_view> forms;
    std::vector<std::string> workers;

    bool variadic() const { return forms.size() > 1; }
};

// In the order of the pack's rows.
const std::vector<DocumentedFunction>& documentedFunctions();

// The name under which a compiler exports a function of the given arguments after the context:
// the letters above, X for a value of any kind, # for a count and any number of values.
std::string exportedName(std::string_view function, std::string_view arguments);
