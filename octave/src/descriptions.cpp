#include "descriptions.h"

#include <algorithm>

namespace undula {
namespace {

#include "descriptions.inc"

}  // namespace

std::span<const Description> descriptions() {
    return allDescriptions;
}

const Description* describe(std::string_view name) {
    const auto* const found = std::ranges::lower_bound(descriptionsByName, name, {},
                                                       [](const Description* each) { return each->name; });
    return found != std::end(descriptionsByName) && (*found)->name == name ? *found : nullptr;
}

const Wavelet* findWavelet(std::string_view name) {
    const auto* const found = std::ranges::lower_bound(allWavelets, name, {}, &Wavelet::name);
    return found != std::end(allWavelets) && found->name == name ? found : nullptr;
}

}  // namespace undula
