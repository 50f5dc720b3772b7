#include "filters/selection.h"

#include <algorithm>
#include <cmath>
#include <new>

#include "filters/kept.h"
#include "filters/registry.h"
#include "frame/checks.h"

namespace undula {

namespace {

// Beyond this no filter meets any signal that memory can hold a wrapped copy of.
constexpr double farthestOffset = 16777216.0;

// One column of a filter array.
struct Column {
    double values[mostTaps];
    std::int32_t count = 0;

    Taps taps() const { return {values, count}; }
    bool usable() const {
        return count > 0 &&
               std::all_of(values, values + count, [](double tap) { return std::isfinite(tap); });
    }
};

// Rows of a column without the zeros at its end.
std::int32_t effectiveLength(const aMatrix* filter, int col) {
    std::int32_t rows = filter->rows;
    while (rows > 0 && element(filter, rows - 1, col) == 0.0) --rows;
    return rows;
}

// Reads the first taps of a column; an empty column when they are too many.
Column readColumn(const aMatrix* filter, int col, std::int32_t count) {
    Column column;
    if (count > mostTaps) return column;
    for (std::int32_t row = 0; row < count; ++row) column.values[row] = element(filter, row, col);
    column.count = count;
    return column;
}

bool readOffset(const aMatrix* offsets, int col, std::int32_t& offset) {
    const double value = element(offsets, 0, col);
    if (!isWhole(value) || std::fabs(value) > farthestOffset) return false;
    offset = static_cast<std::int32_t>(value);
    return true;
}

// Flips that were not written are 0.
bool readFlip(const aMatrix* flips, int col, bool& flip) {
    const double value = flips == nullptr ? 0.0 : element(flips, 0, col);
    if (value != 0.0 && value != 1.0) return false;
    flip = value == 1.0;
    return true;
}

// Reads the rows of settings, whose shapes are compared before any element is read.
bool readSettings(const aMatrix* filter, const aMatrix* offsets, const aMatrix* flips,
                  ChannelSettings& settings) {
    const auto isRowOf = [filter](const aMatrix* row) { return row->rows == 1 && row->cols == filter->cols; };
    if (!isRowOf(offsets) || (flips != nullptr && !isRowOf(flips))) return false;
    for (int col = 0; col < filter->cols; ++col) {
        if (!readOffset(offsets, col, settings.offset[col]) || !readFlip(flips, col, settings.flip[col]))
            return false;
    }
    return true;
}

const OrthonormalWavelet* makeOrthonormal(Taps low, const ChannelSettings& settings) {
    const std::int32_t taps = low.count;
    const std::int32_t room = taps + OrthonormalWavelet::workLength(taps);
    auto storage = Array<double>::uninitialised(static_cast<std::uint64_t>(room));
    return keep<UserDefinedOrthonormal>(storage, [&] {
        double* h = storage.data();
        double* work = std::copy_n(low.values, taps, h);
        return new (std::nothrow) UserDefinedOrthonormal(h, taps, work, settings.offset[0], settings.flip[0]);
    });
}

const BiorthogonalWavelet* makeBiorthogonal(Taps lowA, Taps lowS, const ChannelSettings& settings) {
    const std::int32_t room =
        lowA.count + lowS.count + BiorthogonalWavelet::workLength(lowA.count, lowS.count);
    auto storage = Array<double>::uninitialised(static_cast<std::uint64_t>(room));
    return keep<UserDefinedBiorthogonal>(storage, [&] {
        double* ha = storage.data();
        double* hs = std::copy_n(lowA.values, lowA.count, ha);
        double* work = std::copy_n(lowS.values, lowS.count, hs);
        return new (std::nothrow) UserDefinedBiorthogonal(ha, lowA.count, hs, lowS.count, work, settings);
    });
}

// The filters of a filter array: one, or the two of a pair.
class Filters {
 public:
    explicit Filters(const aMatrix* filter)
        : isPair(filter->cols == 2),
          low(readColumn(filter, 0, isPair ? effectiveLength(filter, 0) : filter->rows)) {
        if (isPair) lowS = readColumn(filter, 1, effectiveLength(filter, 1));
    }

    bool usable() const { return low.usable() && (!isPair || lowS.usable()); }

    // The built-in wavelet with these taps, whatever its settings; null without.
    const Wavelet* builtIn() const {
        if (isPair) return findBSpline(low.taps(), lowS.taps());
        return findOrthonormal(low.taps());
    }

    // The wavelet that is selected already, when it is the one described; else a known one, or a new one;
    // null when there is no memory.
    const Wavelet* wavelet(const ChannelSettings& settings) const {
        if (isSelected(settings)) return ActiveFilter.selected;
        if (isPair) {
            const auto* known = findBiorthogonal(low.taps(), lowS.taps(), settings);
            return known != nullptr ? known : makeBiorthogonal(low.taps(), lowS.taps(), settings);
        }
        const auto* known = findOrthonormal(low.taps(), settings);
        return known != nullptr ? known : makeOrthonormal(low.taps(), settings);
    }

 private:
    bool isSelected(const ChannelSettings& settings) const {
        if (ActiveFilter.selected == nullptr) return false;
        const Wavelet& selected = *ActiveFilter.selected;
        return isPair ? matches(selected, low.taps(), lowS.taps(), settings)
                      : matches(selected, low.taps(), settings);
    }

    bool isPair;
    Column low;
    Column lowS;
};

// The settings under which a built-in wavelet is found again.
ChannelSettings settingsOf(const Wavelet& wavelet) {
    return {{wavelet.analysisLowOffset(), wavelet.synthesisLowOffset()},
            {wavelet.analysisHighFlipped() != 0, wavelet.synthesisHighFlipped() != 0}};
}

// Null when the arrays describe no wavelet, or there is no memory for it.
const Wavelet* waveletOf(const aMatrix* filter, const aMatrix* offsets, const aMatrix* flips) {
    if (filter->cols != 1 && filter->cols != 2) return nullptr;
    ChannelSettings settings;
    if (offsets != nullptr && !readSettings(filter, offsets, flips, settings)) return nullptr;
    const Filters filters(filter);
    if (!filters.usable()) return nullptr;
    if (offsets == nullptr) {
        if (const Wavelet* found = filters.builtIn()) settings = settingsOf(*found);
    }
    return filters.wavelet(settings);
}

}  // namespace

Result<FilterBank> selectWavelet(EfiCallContext* context, const WaveletArguments& arguments) {
    const auto [position, filter, offsets, flips] = arguments;
    const aMatrix* const written[] = {filter, offsets, flips};
    for (int i = 0; i < 3 && (i == 0 || written[i] != nullptr); ++i) {
        if (auto failure = requireRealArray(context, written[i], position + i)) return failure;
    }
    const Wavelet* wavelet = waveletOf(filter, offsets, flips);
    if (wavelet == nullptr) return Failure(Code::FilterUnimplemented, position);
    return select(*wavelet);
}

}  // namespace undula
