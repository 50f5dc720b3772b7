#include "filters/names.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "filters/built_in.h"

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

struct NamedFamily {
    std::string_view letters[3];
    FindByLength* find;
};

constexpr NamedFamily families[] = {
#define FAMILY(Class, function, ...) {{__VA_ARGS__}, findByLength<Class>},
#include "filters/families.def"
#undef FAMILY
};

// The family of the letters; null for others.
FindByLength* familyOf(std::string_view letters) {
    for (const NamedFamily& family : families) {
        if (std::find(std::begin(family.letters), std::end(family.letters), letters) !=
            std::end(family.letters))
            return family.find;
    }
    return nullptr;
}

Result<FilterBank> selectNamed(const Name& name) {
    const auto [letters, digits] = name;
    if (letters == "haar" && digits.empty()) return selectTabulated(findByLength<Daublet>, 2.0);
    if (letters == "bs" || letters == "Bspline") {
        if (digits.size() != 2) return Code::InvalidWaveletName;
        return selectBSpline(valueOf(digits.substr(0, 1)), valueOf(digits.substr(1)));
    }
    if (digits.empty()) return Code::InvalidWaveletName;
    if (letters == "bl") return selectBattleLemarie(valueOf(digits));
    if (FindByLength* find = familyOf(letters)) return selectTabulated(find, valueOf(digits));
    return Code::InvalidWaveletName;
}

}  // namespace

Result<FilterBank> selectWaveletString(const aString* text) {
    Name name;
    if (!parse(text->text, name)) return Failure(Code::InvalidWaveletName, 1);
    auto bank = selectNamed(name);
    if (!bank) return bank.failure().at(1);
    return bank;
}

}  // namespace undula
