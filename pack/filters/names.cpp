#include "filters/names.h"

#include <algorithm>
#include <string_view>

#include "filters/registry.h"
#include "frame/checks.h"
#include "frame/workers.h"

namespace undula {

namespace {

// A name in its two parts.
struct Name {
    std::string_view letters;
    std::string_view digits;
};

bool isDigit(char c) {
    return '0' <= c && c <= '9';
}
bool isLetter(char c) {
    return ('a' <= c && c <= 'z') || ('A' <= c && c <= 'Z');
}

// Letters first, at least one, and then nothing but digits.
bool parse(std::string_view text, Name& name) {
    const auto firstDigit = std::find_if(text.begin(), text.end(), isDigit);
    const auto length = static_cast<std::size_t>(firstDigit - text.begin());
    name = {text.substr(0, length), text.substr(length)};
    return !name.letters.empty() && std::all_of(name.letters.begin(), name.letters.end(), isLetter) &&
           std::all_of(name.digits.begin(), name.digits.end(), isDigit);
}

// Digits as a number; more of them than any family knows stay a whole number beyond all lengths.
double valueOf(std::string_view digits) {
    constexpr double beyondAll = 1e15;
    double value = 0.0;
    for (const char digit : digits) value = std::min(beyondAll, 10.0 * value + (digit - '0'));
    return value;
}

using FilterFunction = aMatrix* (*)(EfiCallContext*, aComplex*);

struct Family {
    std::string_view letters;
    FilterFunction function;
};

constexpr Family families[] = {
    {"d", daublet},       {"daub", daublet}, {"daublet", daublet}, {"s", symmlet},       {"symm", symmlet},
    {"symmlet", symmlet}, {"c", coiflet},    {"coif", coiflet},    {"coiflet", coiflet}, {"bl", bl},
};

ErrorValue failName(EfiCallContext* context) {
    return fail(context, {"invalid filter wavelet string", 1});
}

aMatrix* callFamily(EfiCallContext* context, FilterFunction function, double value) {
    aComplex argument = scalarOf(value);
    return function(context, &argument);
}

// Both orders are one digit; that the pair does not exist is the name's fault.
aMatrix* callBspline(EfiCallContext* context, std::string_view digits) {
    if (digits.size() != 2) return failName(context);
    aComplex m = scalarOf(valueOf(digits.substr(0, 1)));
    aComplex n = scalarOf(valueOf(digits.substr(1)));
    const bool inRange = 1.0 <= m.re && m.re <= 3.0 && 1.0 <= n.re;
    if (inRange && findBSpline(asIndex(m.re), asIndex(n.re)) == nullptr) {
        return fail(context, {Code::FilterUnimplemented, 1});
    }
    return reposition(Bspline(context, &m, &n), {1, 1});
}

}  // namespace

Anyval* selectWaveletString(EfiCallContext* context, const aString* text) {
    Name name;
    if (!parse(text->text, name)) return failName(context);
    for (const Family& family : families) {
        if (name.letters != family.letters) continue;
        if (name.digits.empty()) return failName(context);
        return callFamily(context, family.function, valueOf(name.digits));
    }
    if (name.letters == "bs" || name.letters == "Bspline") return callBspline(context, name.digits);
    if (name.letters == "haar" && name.digits.empty()) return callFamily(context, daublet, 2.0);
    return failName(context);
}

}  // namespace undula
