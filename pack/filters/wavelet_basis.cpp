// wavebs: the ordinary wavelet basis as a packet basis.
#include "frame/basis_rows.h"
#include "frame/checks.h"
#include "frame/workers.h"

using namespace undula;

namespace {

Result<aMatrix*> waveletBasis(EfiCallContext* context, double level) {
    BasisRows rows(asIndex(level) + std::uint64_t{1}, 2);
    if (!rows) return Code::OutOfMemory;
    rows.add(level, 0.0);
    for (double j = level; j >= 1.0; --j) {
        if (interrupted(context)) return Code::Interrupted;
        rows.add(j, 1.0);
    }
    return rows.result(context);
}

Result<aMatrix*> waveletBasis2d(EfiCallContext* context, double level) {
    BasisRows rows(std::uint64_t{3} * asIndex(level) + 1, 3);
    if (!rows) return Code::OutOfMemory;
    rows.add(level, 0.0, 0.0);
    for (double j = level; j >= 1.0; --j) {
        if (interrupted(context)) return Code::Interrupted;
        rows.add(j, 0.0, 1.0);
        rows.add(j, 1.0, 0.0);
        rows.add(j, 1.0, 1.0);
    }
    return rows.result(context);
}

Result<aMatrix*> waveletBasis(EfiCallContext* context, const aComplex* level, const aComplex* dimension) {
    if (auto failure = requireRealFrom(1, level, dimension)) return failure;
    if (dimension->re != 1.0 && dimension->re != 2.0) return Failure(Code::InvalidDimension, 2);
    if (auto failure = requireLevel(level->re, 1)) return failure;
    return dimension->re == 1.0 ? waveletBasis(context, level->re) : waveletBasis2d(context, level->re);
}

}  // namespace

aMatrix* wavebs(EfiCallContext* context, aComplex* level, aComplex* dimension) {
    return toHost(context, waveletBasis(context, level, dimension));
}
