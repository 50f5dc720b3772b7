// father, mother, dlfather, dlmother and their 2d forms: scaling functions and wavelets by name; dl:
// the dual functions.
#include "dwt/orientation.h"
#include "eval/evaluation.h"
#include "filters/names.h"
#include "frame/checks.h"
#include "frame/workers.h"

using namespace undula;

namespace {

constexpr int namePosition = 4;
constexpr int namePosition2d = 6;
constexpr int typePosition2d = 7;

constexpr double scalingFunction = 0.0;
constexpr double motherWavelet = 1.0;

// The wavelet of a name at a position among the arguments.
Result<FilterBank> selectNamed(const aString* name, int position) {
    const auto bank = selectWaveletString(name);
    if (!bank) return bank.failure().at(position);
    return bank;
}

struct NamedPoint {
    const aComplex* x;
    const aComplex* level;
    const aComplex* shift;
    const aString* name;
};

Result<double> evaluateNamed(EfiCallContext* context, FunctionSet set, const NamedPoint& p, double packet) {
    if (auto failure = requireRealFrom(1, p.x, p.level, p.shift)) return failure;
    const auto bank = selectNamed(p.name, namePosition);
    if (!bank) return bank.failure();
    const PointArguments arguments = {p.x->re, p.level->re, p.shift->re, packet};
    return evaluate(context, filtersOf(*bank, set), arguments);
}

struct NamedPlanePoint {
    const aComplex* x;
    const aComplex* y;
    const aComplex* level;
    const aComplex* shiftX;
    const aComplex* shiftY;
    const aString* name;
};

// The packets are those of a block of a transformed image.
Result<double> evaluateNamed(EfiCallContext* context, FunctionSet set, const NamedPlanePoint& p,
                             const Result<Orientation>& packets) {
    if (auto failure = requireRealFrom(1, p.x, p.y, p.level, p.shiftX, p.shiftY)) return failure;
    const auto bank = selectNamed(p.name, namePosition2d);
    if (!bank) return bank.failure();
    if (!packets) return packets.failure();
    const PlaneArguments arguments = {p.x->re,      p.y->re,      p.level->re, p.shiftX->re,
                                      p.shiftY->re, packets->row, packets->col};
    return evaluate(context, filtersOf(*bank, set), arguments);
}

HostValue father(EfiCallContext* context, FunctionSet set, const NamedPoint& p) {
    return toHost(context, scalarResult(context, evaluateNamed(context, set, p, scalingFunction)));
}
HostValue mother(EfiCallContext* context, FunctionSet set, const NamedPoint& p) {
    return toHost(context, scalarResult(context, evaluateNamed(context, set, p, motherWavelet)));
}
HostValue father2d(EfiCallContext* context, FunctionSet set, const NamedPlanePoint& p) {
    return toHost(context, scalarResult(context, evaluateNamed(context, set, p, smoothBlock)));
}
HostValue mother2d(EfiCallContext* context, FunctionSet set, const NamedPlanePoint& p, const aString* type) {
    const auto packets = readOrientation(type->text, typePosition2d);
    return toHost(context, scalarResult(context, evaluateNamed(context, set, p, packets)));
}

constexpr auto analysis = FunctionSet::Analysis;
constexpr auto synthesis = FunctionSet::Synthesis;

}  // namespace

aComplex* father(EfiCallContext* context, aComplex* x, aComplex* j, aComplex* k, aString* name) {
    return father(context, analysis, NamedPoint{x, j, k, name});
}

aComplex* mother(EfiCallContext* context, aComplex* x, aComplex* j, aComplex* k, aString* name) {
    return mother(context, analysis, NamedPoint{x, j, k, name});
}

aComplex* dlfather(EfiCallContext* context, aComplex* x, aComplex* j, aComplex* k, aString* name) {
    return father(context, synthesis, NamedPoint{x, j, k, name});
}

aComplex* dlmother(EfiCallContext* context, aComplex* x, aComplex* j, aComplex* k, aString* name) {
    return mother(context, synthesis, NamedPoint{x, j, k, name});
}

aComplex* father2d(EfiCallContext* context, aComplex* x, aComplex* y, aComplex* j, aComplex* kx, aComplex* ky,
                   aString* name) {
    return father2d(context, analysis, NamedPlanePoint{x, y, j, kx, ky, name});
}

aComplex* dlfather2d(EfiCallContext* context, aComplex* x, aComplex* y, aComplex* j, aComplex* kx,
                     aComplex* ky, aString* name) {
    return father2d(context, synthesis, NamedPlanePoint{x, y, j, kx, ky, name});
}

aComplex* mother2d(EfiCallContext* context, aComplex* x, aComplex* y, aComplex* j, aComplex* kx, aComplex* ky,
                   aString* name, aString* type) {
    return mother2d(context, analysis, NamedPlanePoint{x, y, j, kx, ky, name}, type);
}

aComplex* dlmother2d(EfiCallContext* context, aComplex* x, aComplex* y, aComplex* j, aComplex* kx,
                     aComplex* ky, aString* name, aString* type) {
    return mother2d(context, synthesis, NamedPlanePoint{x, y, j, kx, ky, name}, type);
}
