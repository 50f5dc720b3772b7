#include "fuzz/documented.h"

#include <fstream>
#include <map>

namespace {

std::vector<std::string> textsIn(std::string_view line) {
    std::vector<std::string> texts;
    for (std::size_t from = line.find('"'); from != std::string_view::npos; from = line.find('"')) {
        const std::size_t length = line.substr(from + 1).find('"');
        if (length == std::string_view::npos) break;
        texts.emplace_back(line.substr(from + 1, length));
        line.remove_prefix(from + length + 2);
    }
    return texts;
}

// The lists of names in a line such as forms = [["x"], ["x", "level"]].
void addForms(std::string_view line, std::vector<std::vector<std::string>>& forms) {
    for (std::size_t end = line.find(']'); end != std::string_view::npos; end = line.find(']')) {
        auto names = textsIn(line.substr(0, end));
        if (!names.empty()) forms.push_back(std::move(names));
        line.remove_prefix(end + 1);
    }
}

// What a line such as ["level", "must be real", "when", "call"] documents; empty for another one.
std::string errorIn(const std::string& line) {
    const auto texts = textsIn(line);
    return line.find("[\"") == std::string::npos || texts.size() < 2 ? "" : texts[1] + " (" + texts[0] + ")";
}

std::map<std::string, Documented, std::less<>> readAll() {
    std::map<std::string, Documented, std::less<>> all;
    std::map<std::string, std::string> named;
    std::ifstream file(UNDULA_DESCRIPTIONS);
    std::string table;
    std::string key;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with('[')) table = line.substr(1, line.find(']') - 1);
        if (!line.empty() && std::isalpha(line[0])) key = line.substr(0, line.find(' '));
        std::string text = errorIn(line);
        if (table == "errors") named[key] = text;
        if (!table.starts_with("functions.")) continue;
        Documented& function = all[table.substr(table.find('.') + 1)];
        if (key == "forms") addForms(line, function.forms);
        if (key != "errors") continue;
        if (line.starts_with("    \"")) text = named[textsIn(line).at(0)];
        if (!text.empty()) function.errors.insert(text);
    }
    return all;
}

}  // namespace

const Documented& documented(std::string_view function) {
    static const auto all = readAll();
    return all.find(function)->second;
}
