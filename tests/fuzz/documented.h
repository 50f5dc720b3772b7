// What functions/functions.toml says about calls: the names of their arguments, and the errors that they
// give.
#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

struct Documented {
    std::vector<std::vector<std::string>> forms;
    std::set<std::string> errors;  // "message (argument)", without a name for the call as a whole
};

const Documented& documented(std::string_view function);
