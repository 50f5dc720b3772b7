// The functions whose workers are still to come. Their rows check kinds and counts like any other
// and then answer "unknown error".
#pragma once

#include <string_view>

namespace undula {

inline constexpr std::string_view awaited[] = {
    "wavelet", "dlwavelet", "waveterp", "swaveterp", "wavelet2d", "dlwavelet2d", "waveterp2d", "swaveterp2d",
    "father",  "mother",    "dlfather", "dlmother",  "father2d",  "mother2d",    "dlfather2d", "dlmother2d",
};

constexpr bool isAwaited(std::string_view name) {
    for (const std::string_view entry : awaited) {
        if (entry == name) return true;
    }
    return false;
}

}  // namespace undula
