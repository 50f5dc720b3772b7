// A boundary treatment: all in which the periodic, the symmetric and the interval transforms
// differ.
#pragma once

#include "dwt/ends.h"
#include "dwt/steps.h"
#include "filters/wavelet.h"

namespace undula {

struct BoundaryTreatment {
    AnalysisStep* analysis;
    SynthesisStep* synthesis;
    const Ends* ends;

    // The property that a wavelet must have, null for none, and what is said of one without it.
    std::int32_t (Wavelet::*suits)() const;
    Code refusal;

    // Whether n samples can be halved `levels` times.
    bool (*admits)(const FilterBank& bank, std::uint64_t n, std::uint64_t levels);

    // Transforms look at the wavelet before the levels, or after them.
    bool waveletFirst;
    // Where image transforms poll: for each column and row of a forward transform, and once more
    // before each level of an inverse one, which always polls for its columns and rows.
    bool pollsForwardLines;
    bool pollsInverseLevels;
};

extern const BoundaryTreatment periodicBoundary;
extern const BoundaryTreatment symmetricBoundary;
extern const BoundaryTreatment intervalBoundary;

// What the treatment says of the wavelet, which is an argument of the call.
Failure requireSuitable(const BoundaryTreatment& boundary, const FilterBank& bank, int waveletArgument);

}  // namespace undula
