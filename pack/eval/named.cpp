// father, mother, dlfather, dlmother and their 2d forms: scaling functions and wavelets by name; dl:
// the dual functions.
#include "dwt/orientation.h"
#include "eval/evaluation.h"
#include "eval/scalars.h"
#include "filters/names.h"
#include "filters/selection.h"
#include "frame/workers.h"

using namespace undula;

namespace {

constexpr int namePosition = 4;
constexpr int namePosition2d = 6;
constexpr int typePosition2d = 7;

constexpr double scalingFunction = 0.0;
constexpr double motherWavelet = 1.0;

// Selects the wavelet of a name. Null, or the error value, which is about the name.
Anyval* selectByName(EfiCallContext* context, const aString* name, int position, aMatrix*& filter) {
    Anyval* found = selectWaveletString(context, name);
    if (isError(found)) return reposition(found, {position});
    filter = static_cast<aMatrix*>(found);
    return nullptr;
}

struct NamedPoint {
    const aComplex* x;
    const aComplex* level;
    const aComplex* shift;
    const aString* name;
};

// The packet is not the user's, and the filter array is what the name stands for.
constexpr int positions[] = {1, 2, 3, 0, namePosition};

aComplex* evaluateNamed(EfiCallContext* context, FunctionSet set, const NamedPoint& p, double packet) {
    if (auto failure = requireRealScalars(p.x, p.level, p.shift)) return fail(context, failure);
    aMatrix* filter = nullptr;
    if (Anyval* error = selectByName(context, p.name, namePosition, filter)) return ErrorValue{error};
    if (auto failure = selectWavelet(context, {5, filter}))
        return fail(context, reposition(failure, positions));
    const PointArguments arguments = {p.x->re, p.level->re, p.shift->re, packet};
    double value = 0.0;
    if (auto failure = evaluate(context, activeSet(set), arguments, value)) {
        return fail(context, reposition(failure, positions));
    }
    return resultScalar(context, value);
}

struct NamedPlanePoint {
    const aComplex* x;
    const aComplex* y;
    const aComplex* level;
    const aComplex* shiftX;
    const aComplex* shiftY;
    const aString* name;
};

constexpr int positions2d[] = {1, 2, 3, 4, 5, 0, 0, namePosition2d};

Failure requireRealScalars(const NamedPlanePoint& p) {
    return undula::requireRealScalars(p.x, p.y, p.level, p.shiftX, p.shiftY);
}

// With the wavelet of the filter array, which a name stands for.
aComplex* evaluateFilter(EfiCallContext* context, FunctionSet set, const NamedPlanePoint& p,
                         const aMatrix* filter, const Orientation& packets) {
    if (auto failure = selectWavelet(context, {8, filter}))
        return fail(context, reposition(failure, positions2d));
    const PlaneArguments arguments = {p.x->re,      p.y->re,     p.level->re, p.shiftX->re,
                                      p.shiftY->re, packets.row, packets.col};
    double value = 0.0;
    if (auto failure = evaluate(context, activeSet(set), arguments, value)) {
        return fail(context, reposition(failure, positions2d));
    }
    return resultScalar(context, value);
}

aComplex* evaluateFather(EfiCallContext* context, FunctionSet set, const NamedPlanePoint& p) {
    if (auto failure = requireRealScalars(p)) return fail(context, failure);
    aMatrix* filter = nullptr;
    if (Anyval* error = selectByName(context, p.name, namePosition2d, filter)) return ErrorValue{error};
    return evaluateFilter(context, set, p, filter, smoothBlock);
}

aComplex* evaluateMother(EfiCallContext* context, FunctionSet set, const NamedPlanePoint& p,
                         const aString* type) {
    if (auto failure = requireRealScalars(p)) return fail(context, failure);
    aMatrix* filter = nullptr;
    if (Anyval* error = selectByName(context, p.name, namePosition2d, filter)) return ErrorValue{error};
    Orientation packets = {};
    if (!readOrientation(type->text, packets))
        return fail(context, {text::invalidOrientation, typePosition2d});
    return evaluateFilter(context, set, p, filter, packets);
}

constexpr auto analysis = FunctionSet::Analysis;
constexpr auto synthesis = FunctionSet::Synthesis;

}  // namespace

aComplex* father(EfiCallContext* context, aComplex* x, aComplex* j, aComplex* k, aString* name) {
    return evaluateNamed(context, analysis, {x, j, k, name}, scalingFunction);
}

aComplex* mother(EfiCallContext* context, aComplex* x, aComplex* j, aComplex* k, aString* name) {
    return evaluateNamed(context, analysis, {x, j, k, name}, motherWavelet);
}

aComplex* dlfather(EfiCallContext* context, aComplex* x, aComplex* j, aComplex* k, aString* name) {
    return evaluateNamed(context, synthesis, {x, j, k, name}, scalingFunction);
}

aComplex* dlmother(EfiCallContext* context, aComplex* x, aComplex* j, aComplex* k, aString* name) {
    return evaluateNamed(context, synthesis, {x, j, k, name}, motherWavelet);
}

aComplex* father2d(EfiCallContext* context, aComplex* x, aComplex* y, aComplex* j, aComplex* kx, aComplex* ky,
                   aString* name) {
    return evaluateFather(context, analysis, {x, y, j, kx, ky, name});
}

aComplex* dlfather2d(EfiCallContext* context, aComplex* x, aComplex* y, aComplex* j, aComplex* kx,
                     aComplex* ky, aString* name) {
    return evaluateFather(context, synthesis, {x, y, j, kx, ky, name});
}

aComplex* mother2d(EfiCallContext* context, aComplex* x, aComplex* y, aComplex* j, aComplex* kx, aComplex* ky,
                   aString* name, aString* type) {
    return evaluateMother(context, analysis, {x, y, j, kx, ky, name}, type);
}

aComplex* dlmother2d(EfiCallContext* context, aComplex* x, aComplex* y, aComplex* j, aComplex* kx,
                     aComplex* ky, aString* name, aString* type) {
    return evaluateMother(context, synthesis, {x, y, j, kx, ky, name}, type);
}
