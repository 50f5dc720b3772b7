// The blocks of one level of a transformed image, by their letters.
#pragma once

namespace undula {

// Indices of a block: 0 for the low-pass part, 1 for the high-pass part, along the columns of the
// image (row) and along its rows (col).
struct Orientation {
    double row;
    double col;
};

inline constexpr Orientation smoothBlock = {0.0, 0.0};

constexpr bool isOneCharacter(const char* text) {
    return text[0] != '\0' && text[1] == '\0';
}

// "H", "V" and "D"; false for any other text.
constexpr bool readOrientation(const char* text, Orientation& block) {
    if (!isOneCharacter(text)) return false;
    switch (text[0]) {
        case 'H':
            block = {1.0, 0.0};
            return true;
        case 'V':
            block = {0.0, 1.0};
            return true;
        case 'D':
            block = {1.0, 1.0};
            return true;
        default:
            return false;
    }
}

namespace text {
inline constexpr const char* invalidOrientation = "invalid 2d wavelet string";
}  // namespace text

}  // namespace undula
