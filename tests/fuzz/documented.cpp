#include "fuzz/documented.h"

#include <fstream>
#include <map>
#include <regex>

namespace {

using Matches = std::sregex_iterator;

std::map<std::string, Documented, std::less<>> readAll() {
    static const std::regex list("\\[\"([^\\]]*)\"\\]");
    static const std::regex item("[^\", ]+");
    static const std::regex error("\\[\"([^\"]*)\", \"([^\"]*)\"");
    static const std::regex common("^ +\"(\\w+)\"");
    std::map<std::string, Documented, std::less<>> all;
    std::map<std::string, std::string> named;
    std::ifstream file(UNDULA_DESCRIPTIONS);
    std::string table;
    std::string key;
    for (std::string line; std::getline(file, line);) {
        std::smatch found;
        if (line.starts_with('[')) table = line.substr(1, line.find(']') - 1);
        if (!line.empty() && std::isalpha(line[0])) key = line.substr(0, line.find(' '));
        std::string text;
        if (std::regex_search(line, found, error)) text = found[2].str() + " (" + found[1].str() + ")";
        if (table == "errors") named[key] = text;
        if (!table.starts_with("functions.")) continue;
        Documented& function = all[table.substr(table.find('.') + 1)];
        for (Matches form(line.begin(), line.end(), list); key == "forms" && form != Matches(); ++form) {
            auto& names = function.forms.emplace_back();
            const std::string inside = (*form)[1];
            for (Matches name(inside.begin(), inside.end(), item); name != Matches(); ++name)
                names.push_back(name->str());
        }
        if (key != "errors") continue;
        if (std::regex_search(line, found, common)) text = named[found[1]];
        if (!text.empty()) function.errors.insert(text);
    }
    return all;
}

}  // namespace

const Documented& documented(std::string_view function) {
    static const auto all = readAll();
    return all.find(function)->second;
}
