#include "argument_names.h"

#include <algorithm>
#include <array>

namespace efihost {

namespace {

struct Names {
    std::string_view function;
    std::array<std::string_view, 3> forms;  // unused ones are empty
};

constexpr std::array described{
#include "argument_names.inc"
};

const Names* namesOf(std::string_view function) {
    const auto isIt = [&](const Names& names) { return names.function == function; };
    const auto* const found = std::find_if(described.begin(), described.end(), isIt);
    return found == described.end() ? nullptr : found;
}

std::size_t countOf(std::string_view form) {
    return static_cast<std::size_t>(std::count(form.begin(), form.end(), ' ')) + 1;
}

std::string_view word(std::string_view text, int number) {
    for (; number > 0; --number) text.remove_prefix(text.find(' ') + 1);
    return text.substr(0, text.find(' '));
}

}  // namespace

void nameArguments(std::vector<Function>& functions) {
    const auto isDescribed = [](const Function& function) { return namesOf(function.name) != nullptr; };
    if (functions.size() != described.size()) return;
    if (!std::all_of(functions.begin(), functions.end(), isDescribed)) return;
    for (Function& function : functions) {
        const auto& forms = namesOf(function.name)->forms;
        function.forms = {forms.begin(), std::find(forms.begin(), forms.end(), "")};
    }
}

std::string_view argumentName(const Function& function, std::size_t count, int argument) {
    if (argument < 1 || static_cast<std::size_t>(argument) > count) return {};
    const auto fits = [=](std::string_view form) { return countOf(form) == count; };
    const auto form = std::find_if(function.forms.begin(), function.forms.end(), fits);
    return form == function.forms.end() ? std::string_view() : word(*form, argument - 1);
}

}  // namespace efihost
