// wavelet, dlwavelet, wavelet2d, dlwavelet2d: packet functions of a wavelet given as arrays, at a point
// of the line or of the plane; dl: the dual functions.
#include "eval/evaluation.h"
#include "eval/scalars.h"
#include "filters/selection.h"
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

// With the active filter.
aComplex* evaluateAt(EfiCallContext* context, FunctionSet set, const Point& p) {
    if (auto failure = requireRealScalars(p.x, p.level, p.shift, p.packet)) return fail(context, failure);
    const PointArguments arguments = {p.x->re, p.level->re, p.shift->re, p.packet->re};
    double value = 0.0;
    if (auto failure = evaluate(context, activeSet(set), arguments, value)) return fail(context, failure);
    return resultScalar(context, value);
}

aComplex* evaluateAt(EfiCallContext* context, FunctionSet set, const PlanePoint& p) {
    if (auto failure = requireRealScalars(p.x, p.y, p.level, p.shiftX, p.shiftY, p.packetX, p.packetY)) {
        return fail(context, failure);
    }
    const PlaneArguments arguments = {p.x->re,      p.y->re,       p.level->re,  p.shiftX->re,
                                      p.shiftY->re, p.packetX->re, p.packetY->re};
    double value = 0.0;
    if (auto failure = evaluate(context, activeSet(set), arguments, value)) return fail(context, failure);
    return resultScalar(context, value);
}

// With the wavelet of the arrays.
template <class AnyPoint>
aComplex* evaluateWith(EfiCallContext* context, FunctionSet set, const AnyPoint& point,
                       const WaveletArguments& wavelet) {
    if (auto failure = selectWavelet(context, wavelet)) return fail(context, failure);
    return evaluateAt(context, set, point);
}

constexpr auto analysis = FunctionSet::Analysis;
constexpr auto synthesis = FunctionSet::Synthesis;

}  // namespace

aComplex* wavelet(EfiCallContext* context, aComplex* x, aComplex* j, aComplex* k, aComplex* n) {
    return evaluateAt(context, analysis, Point{x, j, k, n});
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
    return evaluateAt(context, synthesis, Point{x, j, k, n});
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
    return evaluateAt(context, analysis, PlanePoint{x, y, j, kx, ky, nx, ny});
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
    return evaluateAt(context, synthesis, PlanePoint{x, y, j, kx, ky, nx, ny});
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
