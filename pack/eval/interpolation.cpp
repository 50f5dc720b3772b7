// waveterp, swaveterp, waveterp2d, swaveterp2d: the function that a packet of transformed data stands
// for, at any point: its coefficients times the dual packet functions at their shifts. s: with the
// coefficients extended symmetrically, otherwise periodically.
#include <cmath>

#include "dwt/boundary.h"
#include "dwt/extension.h"
#include "dwt/subband_layout.h"
#include "eval/evaluation.h"
#include "filters/selection.h"
#include "frame/checks.h"
#include "frame/workers.h"

using namespace undula;

namespace {

// Beyond this, in scaled samples, nothing is summed.
constexpr double farthestPoint = 0x1p50;

// What distinguishes the periodic functions from the symmetric ones.
struct Treatment {
    const BoundaryTreatment& boundary;
    CoefficientExtension (*extension)(const FilterBank& bank, std::uint64_t n, std::uint32_t level,
                                      std::uint32_t index);
};

CoefficientExtension periodicPacket(const FilterBank&, std::uint64_t n, std::uint32_t level,
                                    std::uint32_t index) {
    return {static_cast<std::int64_t>(subband(n, level, index).length)};
}

// The data itself counts as the low-pass part of itself.
CoefficientExtension symmetricPacket(const FilterBank& bank, std::uint64_t n, std::uint32_t level,
                                     std::uint32_t index) {
    const std::uint64_t length = subband(n, level, index).length;
    const std::uint64_t split = level == 0 ? length : subband(n, level - 1, index >> 1).length;
    const bool lowPass = level == 0 || grayDigit(index, 0) == 0;
    return symmetricExtension(static_cast<std::int64_t>(length), lowPass, split % 2 != 0, bank.Lb % 2 != 0);
}

constexpr Treatment periodic = {periodicBoundary, periodicPacket};
constexpr Treatment symmetric = {symmetricBoundary, symmetricPacket};

// A packet along one side of the data, and the shifts whose functions reach a point.
struct Side {
    double point;  // in samples of the packet
    std::int64_t start;
    CoefficientExtension extension;
    std::int64_t firstShift = 0;
    std::int64_t lastShift = -1;

    Side(const Treatment& treatment, const FilterBank& bank, std::uint64_t n, std::uint32_t level,
         std::uint32_t index, double scaledPoint)
        : point(scaledPoint),
          start(static_cast<std::int64_t>(subband(n, level, index).start)),
          extension(treatment.extension(bank, n, level, index)) {
        if (n == 0 || !std::islessequal(std::fabs(point), farthestPoint)) return;
        const Support support = supportOf(synthesisSet(bank), index);
        firstShift = static_cast<std::int64_t>(std::ceil(point - support.last));
        lastShift = static_cast<std::int64_t>(std::floor(point - support.first));
    }

    // The place in the data of the coefficient at a shift; -1 where the extension has a zero.
    std::int64_t place(std::int64_t shift) const {
        const std::int64_t source = extension.source(modulo(shift, extension.period()));
        return source < 0 ? -1 : start + source;
    }
    double sign(std::int64_t shift) const { return extension.signAt(modulo(shift, extension.period())); }
    double offset(std::int64_t shift) const { return point - static_cast<double>(shift); }
};

bool isPacketOf(double index, std::uint32_t level) {
    return level >= 32 || index < static_cast<double>(std::uint64_t{1} << level);
}

// Whether data of that length has packets of the level. Here every power of two divides emptiness.
bool hasLevel(const Treatment& treatment, const FilterBank& bank, std::uint64_t samples,
              std::uint32_t level) {
    const bool empty = samples == 0 && &treatment == &periodic;
    return empty || treatment.boundary.admits(bank, samples, level);
}

// ---- one dimension ----

constexpr int waveletPosition = 5;

struct Signal {
    static constexpr int dimensions = 1;

    EfiCallContext* context;
    const Treatment& treatment;
    const aComplex* x;
    const aVector* data;
    const aComplex* level;
    const aComplex* index;

    std::uint64_t length() const { return static_cast<std::uint64_t>(data->rows); }
};

// The periodic function divides the data and asks for a whole index; the symmetric one halves it, asks
// for a symmetric wavelet, and leaves a broken index to the first term.
Failure checkPeriodicRange(const Signal& s, const FilterBank& bank) {
    if (auto failure = require32Bits(s.level->re, Code::InvalidLevel, 3)) return failure;
    if (auto failure = requireLevel(s.index->re, 4)) return failure;
    if (!hasLevel(s.treatment, bank, s.length(), asIndex(s.level->re))) return {Code::InvalidLevel, 2};
    return isPacketOf(s.index->re, asIndex(s.level->re)) ? Failure() : Failure(Code::InvalidLevel, 4);
}

Failure checkSymmetricRange(const Signal& s, const FilterBank& bank) {
    if (auto failure = requireSuitable(s.treatment.boundary, bank, waveletPosition)) return failure;
    if (auto failure = require32Bits(s.level->re, Code::InvalidLevel, 3)) return failure;
    if (auto failure = require32Bits(s.index->re, Code::InvalidPacketIndex, 4)) return failure;
    if (!hasLevel(s.treatment, bank, s.length(), asIndex(s.level->re))) return {Code::InvalidLevel, 3};
    return isPacketOf(std::floor(s.index->re), asIndex(s.level->re)) ? Failure()
                                                                     : Failure(Code::InvalidLevel, 4);
}

Failure check(const Signal& s, const FilterBank& bank) {
    if (auto failure = requireReal(s.x, 1)) return failure;
    if (auto failure = requireRealVector(s.context, s.data, 2)) return failure;
    if (auto failure = requireRealFrom(3, s.level, s.index)) return failure;
    return &s.treatment == &periodic ? checkPeriodicRange(s, bank) : checkSymmetricRange(s, bank);
}

Result<double> sum(const Signal& s, const FilterBank& bank) {
    const double scaledPoint = std::exp2(-s.level->re) * s.x->re;
    const Side side(s.treatment, bank, s.length(), asIndex(s.level->re), asIndex(s.index->re), scaledPoint);
    const FilterSet duals = synthesisSet(bank);
    double total = 0.0;
    for (std::int64_t m = side.firstShift; m <= side.lastShift; ++m) {
        if (interrupted(s.context)) return Code::Interrupted;
        const PointArguments point = {side.offset(m), 0.0, 0.0, s.index->re};
        const auto value = evaluate(s.context, duals, point);
        if (!value) return reposition(value.failure(), {0, 0, 0, 4});
        const std::int64_t place = side.place(m);
        const double coefficient =
            place < 0 ? 0.0 : side.sign(m) * element(s.data, static_cast<int>(place), 0);
        total += *value * coefficient;
    }
    return total;
}

// ---- two dimensions ----

constexpr int waveletPosition2d = 7;

struct Image {
    static constexpr int dimensions = 2;

    EfiCallContext* context;
    const Treatment& treatment;
    const aComplex* x;
    const aComplex* y;
    const aMatrix* data;
    const aComplex* level;
    const aComplex* indexX;
    const aComplex* indexY;

    std::uint64_t rows() const { return static_cast<std::uint64_t>(data->rows); }
    std::uint64_t cols() const { return static_cast<std::uint64_t>(data->cols); }
};

Failure checkImageScalars(const Image& image) {
    if (auto failure = requireRealFrom(1, image.x, image.y)) return failure;
    if (auto failure = requireRealArray(image.context, image.data, 3)) return failure;
    return requireRealFrom(4, image.level, image.indexX, image.indexY);
}

Failure check(const Image& image, const FilterBank& bank) {
    if (auto failure = checkImageScalars(image)) return failure;
    if (auto failure = requireSuitable(image.treatment.boundary, bank, waveletPosition2d)) return failure;
    if (auto failure = requireLevel(image.level->re, 4)) return failure;
    if (auto failure = requireLevel(image.indexX->re, 5)) return failure;
    if (auto failure = requireLevel(image.indexY->re, 6)) return failure;
    const std::uint32_t level = asIndex(image.level->re);
    const bool hasLevels = holdsForSides(
        image.data, [&](std::uint64_t side) { return hasLevel(image.treatment, bank, side, level); });
    if (!hasLevels) return {Code::InvalidLevel, 4};
    if (image.cols() == 1) return {Code::MustBeMatrix, 3};
    if (!isPacketOf(image.indexX->re, level)) return {Code::InvalidPacketIndex, 5};
    return isPacketOf(image.indexY->re, level) ? Failure() : Failure(Code::InvalidPacketIndex, 6);
}

Result<double> sum(const Image& image, const FilterBank& bank) {
    const std::uint32_t level = asIndex(image.level->re);
    const double scale = std::exp2(-image.level->re);
    const Side down(image.treatment, bank, image.rows(), level, asIndex(image.indexX->re),
                    scale * image.x->re);
    const Side along(image.treatment, bank, image.cols(), level, asIndex(image.indexY->re),
                     scale * image.y->re);
    const FilterSet duals = synthesisSet(bank);
    double total = 0.0;
    for (std::int64_t my = along.firstShift; my <= along.lastShift; ++my) {
        for (std::int64_t mx = down.firstShift; mx <= down.lastShift; ++mx) {
            const PlaneArguments point = {down.offset(mx),  along.offset(my), 0.0, 0.0, 0.0,
                                          image.indexX->re, image.indexY->re};
            const auto value = evaluate(image.context, duals, point);
            if (!value) return reposition(value.failure(), {0, 0, 0, 0, 0, 5, 6});
            const std::int64_t row = down.place(mx);
            const std::int64_t col = along.place(my);
            if (row < 0 || col < 0) continue;
            const double coefficient = element(image.data, static_cast<int>(row), static_cast<int>(col));
            total += *value * (down.sign(mx) * along.sign(my) * coefficient);
        }
    }
    return total;
}

template <class Data>
Result<double> interpolate(const Data& data, const WaveletArguments& wavelet) {
    const auto bank = selectWavelet(data.context, wavelet);
    if (!bank) return bank.failure();
    if (auto failure = check(data, *bank)) return failure;
    const auto value = sum(data, *bank);
    if (!value) return value;
    return std::exp2(-0.5 * Data::dimensions * data.level->re) * *value;
}

template <class Data>
HostValue interpolation(const Data& data, const WaveletArguments& wavelet) {
    return toHost(data.context, scalarResult(data.context, interpolate(data, wavelet)));
}

}  // namespace

aComplex* waveterp(EfiCallContext* context, aComplex* x, aVector* data, aComplex* j, aComplex* n,
                   aMatrix* filter) {
    return interpolation(Signal{context, periodic, x, data, j, n}, {waveletPosition, filter});
}

aComplex* waveterp(EfiCallContext* context, aComplex* x, aVector* data, aComplex* j, aComplex* n,
                   aMatrix* filter, aMatrix* offsets) {
    return interpolation(Signal{context, periodic, x, data, j, n}, {waveletPosition, filter, offsets});
}

aComplex* waveterp(EfiCallContext* context, aComplex* x, aVector* data, aComplex* j, aComplex* n,
                   aMatrix* filter, aMatrix* offsets, aMatrix* flips) {
    return interpolation(Signal{context, periodic, x, data, j, n}, {waveletPosition, filter, offsets, flips});
}

aComplex* swaveterp(EfiCallContext* context, aComplex* x, aVector* data, aComplex* j, aComplex* n,
                    aMatrix* filter) {
    return interpolation(Signal{context, symmetric, x, data, j, n}, {waveletPosition, filter});
}

aComplex* waveterp2d(EfiCallContext* context, aComplex* x, aComplex* y, aMatrix* data, aComplex* j,
                     aComplex* nx, aComplex* ny, aMatrix* filter) {
    return interpolation(Image{context, periodic, x, y, data, j, nx, ny}, {waveletPosition2d, filter});
}

aComplex* waveterp2d(EfiCallContext* context, aComplex* x, aComplex* y, aMatrix* data, aComplex* j,
                     aComplex* nx, aComplex* ny, aMatrix* filter, aMatrix* offsets) {
    return interpolation(Image{context, periodic, x, y, data, j, nx, ny},
                         {waveletPosition2d, filter, offsets});
}

aComplex* waveterp2d(EfiCallContext* context, aComplex* x, aComplex* y, aMatrix* data, aComplex* j,
                     aComplex* nx, aComplex* ny, aMatrix* filter, aMatrix* offsets, aMatrix* flips) {
    return interpolation(Image{context, periodic, x, y, data, j, nx, ny},
                         {waveletPosition2d, filter, offsets, flips});
}

aComplex* swaveterp2d(EfiCallContext* context, aComplex* x, aComplex* y, aMatrix* data, aComplex* j,
                      aComplex* nx, aComplex* ny, aMatrix* filter) {
    return interpolation(Image{context, symmetric, x, y, data, j, nx, ny}, {waveletPosition2d, filter});
}
