// The tabulated families of filters.
#pragma once

namespace undula {

// Builds every tabulated wavelet and enters it into its registry. Called once, when the library is
// loaded.
void buildFamilies();

}  // namespace undula
