// wavebs: the ordinary wavelet basis as a packet basis.
#include "frame/basis_rows.h"
#include "frame/checks.h"
#include "frame/workers.h"

using namespace undula;

namespace {

aMatrix* waveletBasis(EfiCallContext* context, double level) {
    BasisRows rows(asIndex(level) + std::uint64_t{1}, 2);
    if (!rows) return fail(context, outOfMemory());
    rows.add(level, 0.0);
    for (double j = level; j >= 1.0; --j) {
        if (interrupted(context)) return fail(context, interruption());
        rows.add(j, 1.0);
    }
    return rows.result(context);
}

aMatrix* waveletBasis2d(EfiCallContext* context, double level) {
    BasisRows rows(std::uint64_t{3} * asIndex(level) + 1, 3);
    if (!rows) return fail(context, outOfMemory());
    rows.add(level, 0.0, 0.0);
    for (double j = level; j >= 1.0; --j) {
        if (interrupted(context)) return fail(context, interruption());
        rows.add(j, 0.0, 1.0);
        rows.add(j, 1.0, 0.0);
        rows.add(j, 1.0, 1.0);
    }
    return rows.result(context);
}

}  // namespace

aMatrix* wavebs(EfiCallContext* context, aComplex* level, aComplex* dimension) {
    if (auto failure = requireReal(level, 1)) return fail(context, failure);
    if (auto failure = requireReal(dimension, 2)) return fail(context, failure);
    if (dimension->re != 1.0 && dimension->re != 2.0) return fail(context, {Code::InvalidDimension, 2});
    if (auto failure = requireLevel(level->re, 1)) return fail(context, failure);
    return dimension->re == 1.0 ? waveletBasis(context, level->re) : waveletBasis2d(context, level->re);
}
