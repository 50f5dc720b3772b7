// The blocks of one level of a transformed image, by their letters.
#pragma once

#include "frame/errors.h"

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

// Block "H", "V" or "D", or the failure of the argument that names it.
inline Result<Orientation> readOrientation(const char* text, int argument) {
    switch (isOneCharacter(text) ? text[0] : '\0') {
        case 'H':
            return Orientation{1.0, 0.0};
        case 'V':
            return Orientation{0.0, 1.0};
        case 'D':
            return Orientation{1.0, 1.0};
        default:
            return Failure(Code::InvalidOrientation, argument);
    }
}

}  // namespace undula
