#include "filters/selection.h"

#include <algorithm>
#include <cmath>
#include <new>

#include "filters/active_filter.h"
#include "filters/kept.h"
#include "filters/registry.h"
#include "frame/checks.h"

namespace undula {

namespace {

// No built-in filter is longer, and no longer one of the user's is taken.
constexpr std::int32_t mostTaps = 100;
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

// Both columns of a biorthogonal pair.
struct Pair {
    Column a;
    Column s;

    explicit Pair(const aMatrix* filter)
        : a(readColumn(filter, 0, effectiveLength(filter, 0))),
          s(readColumn(filter, 1, effectiveLength(filter, 1))) {}
    bool usable() const { return a.usable() && s.usable(); }
};

bool readOffset(const aMatrix* offsets, int col, std::int32_t& offset) {
    const double value = element(offsets, 0, col);
    if (std::floor(value) != value || std::fabs(value) > farthestOffset) return false;
    offset = static_cast<std::int32_t>(value);
    return true;
}

// Flips that the user has not written are 0.
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

// The wavelet that is selected already, when it is the one described.
template <class... Filters>
const Wavelet* selectedAlready(const ChannelSettings& settings, Filters... filters) {
    const Wavelet* selected = ActiveFilter.selected;
    return selected != nullptr && matches(*selected, filters..., settings) ? selected : nullptr;
}

const Wavelet* selectIfAny(const Wavelet* wavelet) {
    if (wavelet != nullptr) select(*wavelet);
    return wavelet;
}

const Wavelet* selectOrthonormal(const aMatrix* filter, const ChannelSettings& settings) {
    const Column column = readColumn(filter, 0, filter->rows);
    if (!column.usable()) return nullptr;
    const Taps low = column.taps();
    if (const Wavelet* wavelet = selectedAlready(settings, low)) return wavelet;
    const OrthonormalWavelet* wavelet = findOrthonormal(low, settings);
    return selectIfAny(wavelet != nullptr ? wavelet : makeOrthonormal(low, settings));
}

const Wavelet* selectBiorthogonal(const aMatrix* filter, const ChannelSettings& settings) {
    const Pair pair(filter);
    if (!pair.usable()) return nullptr;
    const Taps lowA = pair.a.taps();
    const Taps lowS = pair.s.taps();
    if (const Wavelet* wavelet = selectedAlready(settings, lowA, lowS)) return wavelet;
    const BiorthogonalWavelet* wavelet = findBiorthogonal(lowA, lowS, settings);
    return selectIfAny(wavelet != nullptr ? wavelet : makeBiorthogonal(lowA, lowS, settings));
}

const Wavelet* selectWith(const aMatrix* filter, const ChannelSettings& settings) {
    return filter->cols == 1 ? selectOrthonormal(filter, settings) : selectBiorthogonal(filter, settings);
}

bool isFilterShape(const aMatrix* filter) {
    return filter->cols == 1 || filter->cols == 2;
}

// The settings under which a built-in wavelet is found again.
ChannelSettings settingsOf(const Wavelet* wavelet) {
    ChannelSettings settings;
    if (wavelet != nullptr) {
        settings.offset[0] = wavelet->analysisLowOffset();
        settings.offset[1] = wavelet->synthesisLowOffset();
        settings.flip[0] = wavelet->analysisHighFlipped() != 0;
        settings.flip[1] = wavelet->synthesisHighFlipped() != 0;
    }
    return settings;
}

const Wavelet* findBuiltIn(const aMatrix* filter) {
    if (filter->cols == 1) {
        const Column column = readColumn(filter, 0, filter->rows);
        return column.usable() ? findOrthonormal(column.taps()) : nullptr;
    }
    const Pair pair(filter);
    return pair.usable() ? findBSpline(pair.a.taps(), pair.s.taps()) : nullptr;
}

}  // namespace

const Wavelet* selectFilterArray(const aMatrix* filter, const aMatrix* offsets, const aMatrix* flips) {
    ChannelSettings settings;
    if (!isFilterShape(filter) || !readSettings(filter, offsets, flips, settings)) return nullptr;
    return selectWith(filter, settings);
}

const Wavelet* selectFilterArrayDefault(const aMatrix* filter) {
    if (!isFilterShape(filter)) return nullptr;
    return selectWith(filter, settingsOf(findBuiltIn(filter)));
}

Failure selectWavelet(EfiCallContext* context, const WaveletArguments& arguments) {
    const aMatrix* const written[] = {arguments.filter, arguments.offsets, arguments.flips};
    for (int i = 0; i < 3 && (i == 0 || written[i] != nullptr); ++i) {
        if (auto failure = requireRealArray(context, written[i], arguments.position + i)) return failure;
    }
    const Wavelet* wavelet = arguments.offsets == nullptr
                                 ? selectFilterArrayDefault(arguments.filter)
                                 : selectFilterArray(arguments.filter, arguments.offsets, arguments.flips);
    return wavelet == nullptr ? Failure(Code::FilterUnimplemented, arguments.position) : Failure();
}

}  // namespace undula
