// What happens at the ends of data: the three treatments as the rows of the filter-bank matrices need
// them.
#pragma once

#include "dwt/extension.h"
#include "filters/filter_bank.h"

namespace undula {

using Index = std::int64_t;

// The boundary filters of the interval: at either end as many rows, which take the place of the filters.
struct EdgeFilterRows {
    const FilterBank* bank = nullptr;  // null without
    Index rows = 0;

    // The number of samples, counted from the end, that a row meets, and that all rows meet.
    Index reach(Index row) const { return rows + 1 + 2 * row; }
    Index reach() const { return rows == 0 ? 0 : reach(rows - 1); }
};

// The ends of n samples that are to be split.
struct AnalysisEnds {
    Channels channels;
    SampleExtension* extension;  // unused where boundary filters stand
    EdgeFilterRows edges;
};

// The ends of n samples that are to be merged.
struct SynthesisEnds {
    Channels channels;
    CoefficientExtension low;
    CoefficientExtension high;
    Index period;  // what lies beyond it is folded into it
    EdgeFilterRows edges;
};

struct Ends {
    // The shortest data that can be split.
    std::uint32_t (*shortest)(const FilterBank& bank);
    AnalysisEnds (*analysis)(const FilterBank& bank, Index n);
    SynthesisEnds (*synthesis)(const FilterBank& bank, Index n);
};

extern const Ends periodicEnds;
extern const Ends symmetricEnds;
extern const Ends intervalEnds;

}  // namespace undula
