#include "wavelets.h"

#include <algorithm>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "calls.h"
#include "conversion.h"

namespace undula {
namespace {

// Which packets a function of a wavelet is, by direction; none for a type that there is not.
struct Indices {
    int x;
    int y;
};

std::optional<Indices> indicesOf(std::string_view function, const octave_value& type) {
    if (function.find("mother") == std::string_view::npos) return Indices{0, 0};
    if (!function.ends_with("2d")) return Indices{1, 0};
    const std::string letter = isText(type) ? type.string_value() : "";
    if (letter == "H") return Indices{1, 0};
    if (letter == "V") return Indices{0, 1};
    if (letter == "D") return Indices{1, 1};
    return std::nullopt;
}

const Description& packetFunction(std::string_view function) {
    const std::string name = std::string(function.starts_with("dl") ? "dl" : "") + "wavelet";
    return *describe(function.ends_with("2d") ? name + "2d" : name);
}

octave_value argumentOf(Form form, const octave_value_list& given, std::string_view name) {
    const auto found = std::ranges::find(form, name, &Argument::name);
    return found == form.end() ? octave_value() : given(found - form.begin());
}

Prepared asPacket(const Description& function, Form form, const octave_value_list& given, Indices indices) {
    const Description& packets = packetFunction(function.name);
    Prepared call = {&packets, packets.forms.front(), {}};
    for (const Argument& argument : call.form) {
        octave_value value = argumentOf(form, given, argument.name);
        if (argument.name == "index" || argument.name == "index_x") value = indices.x;
        if (argument.name == "index_y") value = indices.y;
        call.arguments.append(value.is_defined() ? value : octave_value(0.0));
    }
    return call;
}

bool isFilter(const octave_value& given) {
    return given.isnumeric() && given.numel() != 1;
}

Value madeBy(const Wavelet& wavelet) {
    const std::vector<Value> arguments(wavelet.arguments.begin(), wavelet.arguments.begin() + wavelet.count);
    return callPack(wavelet.function, arguments);
}

}  // namespace

Value filterNamed(const std::string& name) {
    static std::map<std::string, Value, std::less<>>& known = *new std::map<std::string, Value, std::less<>>;
    const auto found = known.find(name);
    if (found != known.end()) return found->second;
    const Wavelet* const wavelet = findWavelet(name);
    if (!wavelet) return callPack("father", {0.0, name});
    Value filter = madeBy(*wavelet);
    if (!filter.isError()) known.emplace(name, filter);
    return filter;
}

Prepared prepare(const Description& function, Form form, const octave_value_list& given) {
    Prepared call = {&function, form, given};
    const auto place = std::ranges::find(form, Role::Name, &Argument::role) - form.begin();
    if (place == std::ssize(form)) return call;
    const octave_value wavelet = given(place);
    if (isText(wavelet)) {
        const Wavelet* const known = findWavelet(wavelet.string_value());
        if (known) call.arguments(place) = std::string(known->packName);
    } else if (isFilter(wavelet)) {
        const auto indices = indicesOf(function.name, argumentOf(form, given, "type"));
        if (indices) return asPacket(function, form, given, *indices);
        call.arguments(place) = "haar";  // the pack refuses the type, whatever the wavelet
    }
    return call;
}

}  // namespace undula
