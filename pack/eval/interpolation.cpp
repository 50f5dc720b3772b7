// waveterp, swaveterp, waveterp2d, swaveterp2d: the function that a packet of transformed data stands
// for, at any point: its coefficients times the dual packet functions at their shifts. s: with the
// coefficients continued symmetrically, otherwise periodically.
#include <cmath>

#include "dwt/boundary.h"
#include "dwt/subband_layout.h"
#include "eval/evaluation.h"
#include "eval/extension.h"
#include "eval/scalars.h"
#include "filters/active_filter.h"
#include "filters/selection.h"
#include "frame/workers.h"

using namespace undula;

namespace {

// Beyond this, in scaled samples, nothing is summed.
constexpr double farthestPoint = 0x1p50;

std::int64_t modulo(std::int64_t m, std::int64_t n) {
    const std::int64_t remainder = m % n;
    return remainder < 0 ? remainder + n : remainder;
}

// What distinguishes the periodic functions from the symmetric ones.
struct Treatment {
    const BoundaryTreatment& boundary;
    PacketContinuation (*continuation)(const FilterBank& bank, std::uint64_t n, std::uint32_t level,
                                       std::uint32_t index);
};

PacketContinuation periodicContinuation(const FilterBank&, std::uint64_t n, std::uint32_t level,
                                        std::uint32_t index) {
    return {static_cast<std::int64_t>(subband(n, level, index).length), -1, 0, 1.0, false};
}

constexpr Treatment periodic = {periodicBoundary, periodicContinuation};
constexpr Treatment symmetric = {symmetricBoundary, continuationOf};

// A packet along one direction of the data, and the shifts whose functions reach a point.
struct Direction {
    double point;  // in samples of the packet
    std::uint64_t start;
    PacketContinuation continuation;
    std::int64_t firstShift = 0;
    std::int64_t lastShift = -1;

    Direction(const Treatment& treatment, const FilterBank& bank, std::uint64_t n, std::uint32_t level,
              std::uint32_t index, double scaledPoint)
        : point(scaledPoint),
          start(subband(n, level, index).start),
          continuation(treatment.continuation(bank, n, level, index)) {
        if (n == 0 || !std::islessequal(std::fabs(point), farthestPoint)) return;
        const Support support = supportOf(synthesisSet(bank), index);
        firstShift = static_cast<std::int64_t>(std::ceil(point - support.last));
        lastShift = static_cast<std::int64_t>(std::floor(point - support.first));
    }

    // The place in the data of the coefficient at a shift; -1 where the continuation has a zero.
    std::int64_t place(std::int64_t shift) const {
        const std::int64_t source = continuation.source(modulo(shift, continuation.period()));
        return source < 0 ? -1 : static_cast<std::int64_t>(start) + source;
    }
    double sign(std::int64_t shift) const {
        return continuation.signAt(modulo(shift, continuation.period()));
    }
    double offset(std::int64_t shift) const { return point - static_cast<double>(shift); }
};

Failure requireSuitableWavelet(const Treatment& treatment, int position) {
    return failureAt(refusalOf(treatment.boundary, ActiveFilter), position);
}

bool isPacketOf(double index, std::uint32_t level) {
    return level >= 32 || index < static_cast<double>(std::uint64_t{1} << level);
}

// Whether data of so many samples have packets of the level. Every power of two divides emptiness.
bool hasLevel(const Treatment& treatment, std::uint64_t samples, std::uint32_t level) {
    const bool empty = samples == 0 && &treatment == &periodic;
    return empty || treatment.boundary.admits(ActiveFilter, samples, level);
}

// ---- one dimension ----

constexpr int waveletPosition = 5;

struct Signal {
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
Failure checkPeriodicRange(const Signal& s) {
    if (auto failure = require32Bits(s.level->re, Code::InvalidLevel, 3)) return failure;
    if (auto failure = requireLevel(s.index->re, 4)) return failure;
    if (!hasLevel(s.treatment, s.length(), asIndex(s.level->re))) return {Code::InvalidLevel, 2};
    return isPacketOf(s.index->re, asIndex(s.level->re)) ? Failure() : Failure(Code::InvalidLevel, 4);
}

Failure checkSymmetricRange(const Signal& s) {
    if (auto failure = requireSuitableWavelet(s.treatment, waveletPosition)) return failure;
    if (auto failure = require32Bits(s.level->re, Code::InvalidLevel, 3)) return failure;
    if (auto failure = require32Bits(s.index->re, Code::InvalidPacketIndex, 4)) return failure;
    if (!hasLevel(s.treatment, s.length(), asIndex(s.level->re))) return {Code::InvalidLevel, 3};
    return isPacketOf(std::floor(s.index->re), asIndex(s.level->re)) ? Failure()
                                                                     : Failure(Code::InvalidLevel, 4);
}

Failure checkSignal(const Signal& s) {
    if (auto failure = requireReal(s.x, 1)) return failure;
    if (auto failure = requireRealVector(s.context, s.data, 2)) return failure;
    if (auto failure = requireReal(s.level, 3)) return failure;
    if (auto failure = requireReal(s.index, 4)) return failure;
    return &s.treatment == &periodic ? checkPeriodicRange(s) : checkSymmetricRange(s);
}

Failure sumSignal(const Signal& s, const FilterBank& bank, double& sum) {
    const double scaledPoint = std::exp2(-s.level->re) * s.x->re;
    const Direction direction(s.treatment, bank, s.length(), asIndex(s.level->re), asIndex(s.index->re),
                              scaledPoint);
    const FilterSet duals = synthesisSet(bank);
    for (std::int64_t m = direction.firstShift; m <= direction.lastShift; ++m) {
        if (interrupted(s.context)) return interruption();
        double value = 0.0;
        const PointArguments point = {direction.offset(m), 0.0, 0.0, s.index->re};
        if (auto failure = evaluate(s.context, duals, point, value)) return reposition(failure, {0, 0, 0, 4});
        const std::int64_t place = direction.place(m);
        const double coefficient =
            place < 0 ? 0.0 : direction.sign(m) * element(s.data, static_cast<int>(place), 0);
        sum += value * coefficient;
    }
    return {};
}

aComplex* interpolate(const Signal& s, const WaveletArguments& wavelet) {
    if (auto failure = selectWavelet(s.context, wavelet)) return fail(s.context, failure);
    if (auto failure = checkSignal(s)) return fail(s.context, failure);
    const FilterBank bank = ActiveFilter;
    double sum = 0.0;
    if (auto failure = sumSignal(s, bank, sum)) return fail(s.context, failure);
    return resultScalar(s.context, std::exp2(-0.5 * s.level->re) * sum);
}

// ---- two dimensions ----

constexpr int waveletPosition2d = 7;

struct Image {
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
    if (auto failure = requireReal(image.x, 1)) return failure;
    if (auto failure = requireReal(image.y, 2)) return failure;
    if (auto failure = requireRealArray(image.context, image.data, 3)) return failure;
    if (auto failure = requireReal(image.level, 4)) return failure;
    if (auto failure = requireReal(image.indexX, 5)) return failure;
    return requireReal(image.indexY, 6);
}

Failure checkImage(const Image& image) {
    if (auto failure = checkImageScalars(image)) return failure;
    if (auto failure = requireSuitableWavelet(image.treatment, waveletPosition2d)) return failure;
    if (auto failure = requireLevel(image.level->re, 4)) return failure;
    if (auto failure = requireLevel(image.indexX->re, 5)) return failure;
    if (auto failure = requireLevel(image.indexY->re, 6)) return failure;
    const std::uint32_t level = asIndex(image.level->re);
    if (!hasLevel(image.treatment, image.rows(), level)) return {Code::InvalidLevel, 4};
    if (image.cols() != 1 && !hasLevel(image.treatment, image.cols(), level)) return {Code::InvalidLevel, 4};
    if (image.cols() == 1) return {Code::MustBeMatrix, 3};
    if (!isPacketOf(image.indexX->re, level)) return {Code::InvalidPacketIndex, 5};
    return isPacketOf(image.indexY->re, level) ? Failure() : Failure(Code::InvalidPacketIndex, 6);
}

Failure sumImage(const Image& image, const FilterBank& bank, double& sum) {
    const std::uint32_t level = asIndex(image.level->re);
    const double scale = std::exp2(-image.level->re);
    const Direction down(image.treatment, bank, image.rows(), level, asIndex(image.indexX->re),
                         scale * image.x->re);
    const Direction along(image.treatment, bank, image.cols(), level, asIndex(image.indexY->re),
                          scale * image.y->re);
    const FilterSet duals = synthesisSet(bank);
    for (std::int64_t my = along.firstShift; my <= along.lastShift; ++my) {
        for (std::int64_t mx = down.firstShift; mx <= down.lastShift; ++mx) {
            const PlaneArguments point = {down.offset(mx),  along.offset(my), 0.0, 0.0, 0.0,
                                          image.indexX->re, image.indexY->re};
            double value = 0.0;
            if (auto failure = evaluate(image.context, duals, point, value)) {
                return reposition(failure, {0, 0, 0, 0, 0, 5, 6});
            }
            const std::int64_t row = down.place(mx);
            const std::int64_t col = along.place(my);
            if (row < 0 || col < 0) continue;
            const double coefficient = element(image.data, static_cast<int>(row), static_cast<int>(col));
            sum += value * (down.sign(mx) * along.sign(my) * coefficient);
        }
    }
    return {};
}

aComplex* interpolate(const Image& image, const WaveletArguments& wavelet) {
    if (auto failure = selectWavelet(image.context, wavelet)) return fail(image.context, failure);
    if (auto failure = checkImage(image)) return fail(image.context, failure);
    const FilterBank bank = ActiveFilter;
    double sum = 0.0;
    if (auto failure = sumImage(image, bank, sum)) return fail(image.context, failure);
    return resultScalar(image.context, std::exp2(-image.level->re) * sum);
}

}  // namespace

aComplex* waveterp(EfiCallContext* context, aComplex* x, aVector* data, aComplex* j, aComplex* n,
                   aMatrix* filter) {
    return interpolate(Signal{context, periodic, x, data, j, n}, {waveletPosition, filter});
}

aComplex* waveterp(EfiCallContext* context, aComplex* x, aVector* data, aComplex* j, aComplex* n,
                   aMatrix* filter, aMatrix* offsets) {
    return interpolate(Signal{context, periodic, x, data, j, n}, {waveletPosition, filter, offsets});
}

aComplex* waveterp(EfiCallContext* context, aComplex* x, aVector* data, aComplex* j, aComplex* n,
                   aMatrix* filter, aMatrix* offsets, aMatrix* flips) {
    return interpolate(Signal{context, periodic, x, data, j, n}, {waveletPosition, filter, offsets, flips});
}

aComplex* swaveterp(EfiCallContext* context, aComplex* x, aVector* data, aComplex* j, aComplex* n,
                    aMatrix* filter) {
    return interpolate(Signal{context, symmetric, x, data, j, n}, {waveletPosition, filter});
}

aComplex* waveterp2d(EfiCallContext* context, aComplex* x, aComplex* y, aMatrix* data, aComplex* j,
                     aComplex* nx, aComplex* ny, aMatrix* filter) {
    return interpolate(Image{context, periodic, x, y, data, j, nx, ny}, {waveletPosition2d, filter});
}

aComplex* waveterp2d(EfiCallContext* context, aComplex* x, aComplex* y, aMatrix* data, aComplex* j,
                     aComplex* nx, aComplex* ny, aMatrix* filter, aMatrix* offsets) {
    return interpolate(Image{context, periodic, x, y, data, j, nx, ny}, {waveletPosition2d, filter, offsets});
}

aComplex* waveterp2d(EfiCallContext* context, aComplex* x, aComplex* y, aMatrix* data, aComplex* j,
                     aComplex* nx, aComplex* ny, aMatrix* filter, aMatrix* offsets, aMatrix* flips) {
    return interpolate(Image{context, periodic, x, y, data, j, nx, ny},
                       {waveletPosition2d, filter, offsets, flips});
}

aComplex* swaveterp2d(EfiCallContext* context, aComplex* x, aComplex* y, aMatrix* data, aComplex* j,
                      aComplex* nx, aComplex* ny, aMatrix* filter) {
    return interpolate(Image{context, symmetric, x, y, data, j, nx, ny}, {waveletPosition2d, filter});
}
