#include "calls.h"

#include <octave/error.h>
#include <octave/quit.h>

#include <algorithm>
#include <cctype>
#include <string>

#include "conversion.h"
#include "stack.h"
#include "wavelets.h"

namespace undula {
namespace {

using efihost::Host;
using efihost::Pack;

// Ctrl-C leaves octave_quit as an exception.
bool checkInterrupt() {
    octave_quit();
    return false;
}

// Host and pack live as long as the process, since a pack cannot undo what it did when it was loaded.
Host& theHost() {
    static Host* const host = [] {
        auto* const made = new Host;
        made->setInterrupt(checkInterrupt);
        return made;
    }();
    return *host;
}

const Pack& thePack() {
    static const Pack* const pack = new Pack;
    return *pack;
}

// "Undula:invalid-level"
std::string identifierOf(const std::string& message) {
    std::string identifier = "Undula:" + message;
    std::replace_if(
        identifier.begin() + 7, identifier.end(), [](unsigned char letter) { return !std::isalnum(letter); },
        '-');
    return identifier;
}

// `position` is counted from 1; 0: the call as a whole.
[[noreturn]] void raise(const Description& function, Form form, const std::string& message, int position) {
    std::string text = std::string(function.name) + ": " + message;
    if (position > 0) {
        text += " (argument " + std::to_string(position);
        if (position <= std::ssize(form)) {
            text += ": " + std::string(form[static_cast<std::size_t>(position - 1)].name);
        }
        text += ")";
    }
    error_with_id(identifierOf(message).c_str(), "%s", text.c_str());
}

// The position of the same argument in another form; 0 where it has none.
int positionIn(Form form, Form called, int position) {
    if (position <= 0 || position > std::ssize(called)) return 0;
    const std::string_view name = called[static_cast<std::size_t>(position - 1)].name;
    const auto found = std::ranges::find(form, name, &Argument::name);
    return found == form.end() ? 0 : static_cast<int>(found - form.begin()) + 1;
}

bool returnsRows(const Prepared& call) {
    for (std::size_t i = 0; i < call.form.size(); ++i) {
        const Role role = call.form[i].role;
        if (role == Role::Data || role == Role::Table) {
            return isRow(call.arguments(static_cast<octave_idx_type>(i)));
        }
    }
    return false;
}

std::vector<Value> valuesOf(const Description& function, Form form, const Prepared& call, bool asRows) {
    std::vector<Value> values;
    for (std::size_t i = 0; i < call.form.size(); ++i) {
        const Argument& argument = call.form[i];
        const octave_value& given = call.arguments(static_cast<octave_idx_type>(i));
        const int position = positionIn(form, call.form, static_cast<int>(i) + 1);
        if (argument.role == Role::Filter && isText(given)) {
            values.push_back(filterNamed(given.string_value()));
            if (values.back().isError()) raise(function, form, values.back().message(), position);
        } else {
            values.push_back(toHost(given, {function.name, position, argument.name}, argument.role, asRows));
        }
    }
    return values;
}

octave_value callWith(const Description& function, Form form, const octave_value_list& given) {
    const Prepared prepared = prepare(function, form, given);
    const bool asRows = returnsRows(prepared);
    Value result = callPack(prepared.function->name, valuesOf(function, form, prepared, asRows));
    if (result.isError()) {
        raise(function, form, result.message(), positionIn(form, prepared.form, result.argument()));
    }
    return toOctave(std::move(result), asRows);
}

}  // namespace

Value callPack(std::string_view function, const std::vector<Value>& arguments) {
    return theHost().callRaw(thePack(), function, arguments);
}

octave_value_list call(std::string_view name, const octave_value_list& given) {
    const Description* const function = describe(name);
    if (!function) {
        error_with_id("Undula:no-such-function", "undula_call: no function '%s'", std::string(name).c_str());
    }
    const auto form = std::ranges::find(function->forms, static_cast<std::size_t>(given.length()),
                                        [](Form each) { return each.size(); });
    if (form == function->forms.end()) raise(*function, {}, "Wrong number of Arguments", 0);
    requireStack();
    try {
        return octave_value_list(callWith(*function, *form, given));
    } catch (const efihost::LoadError& failure) {
        error_with_id("Undula:not-loaded", "undula: %s", failure.what());
    }
}

octave_value_list callByName(const octave_value_list& given) {
    if (given.empty() || !isText(given(0))) {
        error_with_id("Undula:no-such-function", "undula_call: argument 1 must be the name of a function");
    }
    return call(given(0).string_value(), given.slice(1, given.length() - 1));
}

}  // namespace undula
