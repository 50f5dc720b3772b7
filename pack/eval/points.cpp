// wavelet, dlwavelet, wavelet2d, dlwavelet2d: packet functions of a wavelet given as arrays, at a point
// of the line or of the plane; dl: the dual functions.
#include "eval/evaluation.h"
#include "filters/selection.h"
#include "frame/checks.h"
#include "frame/workers.h"

using namespace undula;

namespace {

constexpr int waveletPosition = 5;
constexpr int waveletPosition2d = 8;

// The scalars of a call, in the user's order.
struct Point {
    const aComplex* x;
    const aComplex* level;
    const aComplex* shift;
    const aComplex* packet;
};

struct PlanePoint {
    const aComplex* x;
    const aComplex* y;
    const aComplex* level;
    const aComplex* shiftX;
    const aComplex* shiftY;
    const aComplex* packetX;
    const aComplex* packetY;
};

Failure requireRealScalars(const Point& p) {
    return requireRealFrom(1, p.x, p.level, p.shift, p.packet);
}
Failure requireRealScalars(const PlanePoint& p) {
    return requireRealFrom(1, p.x, p.y, p.level, p.shiftX, p.shiftY, p.packetX, p.packetY);
}

PointArguments argumentsOf(const Point& p) {
    return {p.x->re, p.level->re, p.shift->re, p.packet->re};
}
PlaneArguments argumentsOf(const PlanePoint& p) {
    return {p.x->re, p.y->re, p.level->re, p.shiftX->re, p.shiftY->re, p.packetX->re, p.packetY->re};
}

template <class AnyPoint>
HostValue evaluateAt(EfiCallContext* context, FunctionSet set, const AnyPoint& point,
                     const Result<FilterBank>& bank) {
    if (!bank) return toHost(context, bank.failure());
    if (auto failure = requireRealScalars(point)) return toHost(context, failure);
    return toHost(context,
                  scalarResult(context, evaluate(context, filtersOf(*bank, set), argumentsOf(point))));
}

// With the wavelet of the arrays.
template <class AnyPoint>
HostValue evaluateWith(EfiCallContext* context, FunctionSet set, const AnyPoint& point,
                       const WaveletArguments& wavelet) {
    return evaluateAt(context, set, point, selectWavelet(context, wavelet));
}

// With the wavelet selected last.
template <class AnyPoint>
HostValue evaluateSelected(EfiCallContext* context, FunctionSet set, const AnyPoint& point) {
    return evaluateAt(context, set, point, selectedBank());
}

constexpr auto analysis = FunctionSet::Analysis;
constexpr auto synthesis = FunctionSet::Synthesis;

}  // namespace

aComplex* wavelet(EfiCallContext* context, aComplex* x, aComplex* j, aComplex* k, aComplex* n) {
    return evaluateSelected(context, analysis, Point{x, j, k, n});
}

aComplex* wavelet(EfiCallContext* context, aComplex* x, aComplex* j, aComplex* k, aComplex* n,
                  aMatrix* filter) {
    return evaluateWith(context, analysis, Point{x, j, k, n}, {waveletPosition, filter});
}

aComplex* wavelet(EfiCallContext* context, aComplex* x, aComplex* j, aComplex* k, aComplex* n,
                  aMatrix* filter, aMatrix* offsets) {
    return evaluateWith(context, analysis, Point{x, j, k, n}, {waveletPosition, filter, offsets});
}

aComplex* wavelet(EfiCallContext* context, aComplex* x, aComplex* j, aComplex* k, aComplex* n,
                  aMatrix* filter, aMatrix* offsets, aMatrix* flips) {
    return evaluateWith(context, analysis, Point{x, j, k, n}, {waveletPosition, filter, offsets, flips});
}

aComplex* dlwavelet(EfiCallContext* context, aComplex* x, aComplex* j, aComplex* k, aComplex* n) {
    return evaluateSelected(context, synthesis, Point{x, j, k, n});
}

aComplex* dlwavelet(EfiCallContext* context, aComplex* x, aComplex* j, aComplex* k, aComplex* n,
                    aMatrix* filter) {
    return evaluateWith(context, synthesis, Point{x, j, k, n}, {waveletPosition, filter});
}

aComplex* dlwavelet(EfiCallContext* context, aComplex* x, aComplex* j, aComplex* k, aComplex* n,
                    aMatrix* filter, aMatrix* offsets) {
    return evaluateWith(context, synthesis, Point{x, j, k, n}, {waveletPosition, filter, offsets});
}

aComplex* dlwavelet(EfiCallContext* context, aComplex* x, aComplex* j, aComplex* k, aComplex* n,
                    aMatrix* filter, aMatrix* offsets, aMatrix* flips) {
    return evaluateWith(context, synthesis, Point{x, j, k, n}, {waveletPosition, filter, offsets, flips});
}

aComplex* wavelet2d(EfiCallContext* context, aComplex* x, aComplex* y, aComplex* j, aComplex* kx,
                    aComplex* ky, aComplex* nx, aComplex* ny) {
    return evaluateSelected(context, analysis, PlanePoint{x, y, j, kx, ky, nx, ny});
}

aComplex* wavelet2d(EfiCallContext* context, aComplex* x, aComplex* y, aComplex* j, aComplex* kx,
                    aComplex* ky, aComplex* nx, aComplex* ny, aMatrix* filter) {
    return evaluateWith(context, analysis, PlanePoint{x, y, j, kx, ky, nx, ny}, {waveletPosition2d, filter});
}

aComplex* wavelet2d(EfiCallContext* context, aComplex* x, aComplex* y, aComplex* j, aComplex* kx,
                    aComplex* ky, aComplex* nx, aComplex* ny, aMatrix* filter, aMatrix* offsets) {
    return evaluateWith(context, analysis, PlanePoint{x, y, j, kx, ky, nx, ny},
                        {waveletPosition2d, filter, offsets});
}

aComplex* wavelet2d(EfiCallContext* context, aComplex* x, aComplex* y, aComplex* j, aComplex* kx,
                    aComplex* ky, aComplex* nx, aComplex* ny, aMatrix* filter, aMatrix* offsets,
                    aMatrix* flips) {
    return evaluateWith(context, analysis, PlanePoint{x, y, j, kx, ky, nx, ny},
                        {waveletPosition2d, filter, offsets, flips});
}

aComplex* dlwavelet2d(EfiCallContext* context, aComplex* x, aComplex* y, aComplex* j, aComplex* kx,
                      aComplex* ky, aComplex* nx, aComplex* ny) {
    return evaluateSelected(context, synthesis, PlanePoint{x, y, j, kx, ky, nx, ny});
}

aComplex* dlwavelet2d(EfiCallContext* context, aComplex* x, aComplex* y, aComplex* j, aComplex* kx,
                      aComplex* ky, aComplex* nx, aComplex* ny, aMatrix* filter) {
    return evaluateWith(context, synthesis, PlanePoint{x, y, j, kx, ky, nx, ny}, {waveletPosition2d, filter});
}

aComplex* dlwavelet2d(EfiCallContext* context, aComplex* x, aComplex* y, aComplex* j, aComplex* kx,
                      aComplex* ky, aComplex* nx, aComplex* ny, aMatrix* filter, aMatrix* offsets) {
    return evaluateWith(context, synthesis, PlanePoint{x, y, j, kx, ky, nx, ny},
                        {waveletPosition2d, filter, offsets});
}

aComplex* dlwavelet2d(EfiCallContext* context, aComplex* x, aComplex* y, aComplex* j, aComplex* kx,
                      aComplex* ky, aComplex* nx, aComplex* ny, aMatrix* filter, aMatrix* offsets,
                      aMatrix* flips) {
    return evaluateWith(context, synthesis, PlanePoint{x, y, j, kx, ky, nx, ny},
                        {waveletPosition2d, filter, offsets, flips});
}
