// create_level, create_level2d: all subbands of one level, as a basis.
#include "frame/basis_rows.h"
#include "frame/checks.h"
#include "frame/workers.h"

using namespace undula;

namespace {

// Deeper levels would have more than 2^20 rows.
constexpr std::uint32_t deepestListed = 20;
constexpr std::uint32_t deepestListed2d = 10;

Result<aMatrix*> packetsOf(EfiCallContext* context, const aComplex* level) {
    if (auto failure = requireLevel(level->re, 1)) return failure;
    if (asIndex(level->re) > deepestListed) return Code::OutOfMemory;
    const int count = 1 << asIndex(level->re);
    BasisRows rows(static_cast<std::uint64_t>(count), 2);
    if (!rows) return Code::OutOfMemory;
    for (int i = 0; i < count; ++i) {
        if (interrupted(context)) return Code::Interrupted;
        rows.add(level->re, i);
    }
    return rows.result(context);
}

Result<aMatrix*> blocksOf(EfiCallContext* context, const aComplex* level) {
    if (auto failure = requireReal(level, 1)) return failure;
    if (auto failure = requireLevel(level->re, 1)) return failure;
    if (asIndex(level->re) > deepestListed2d) return Code::OutOfMemory;
    const int side = 1 << asIndex(level->re);
    BasisRows rows(static_cast<std::uint64_t>(side) * static_cast<std::uint64_t>(side), 3);
    if (!rows) return Code::OutOfMemory;
    for (int i = 0; i < side; ++i) {
        for (int j = 0; j < side; ++j) {
            if (interrupted(context)) return Code::Interrupted;
            rows.add(level->re, i, j);
        }
    }
    return rows.result(context);
}

Result<aMatrix*> createLevel(EfiCallContext* context, const aComplex* level, const aComplex* dimension) {
    if (auto failure = requireRealFrom(1, level, dimension)) return failure;
    if (dimension->re == 2.0) return blocksOf(context, level);
    if (dimension->re != 1.0) return Failure(Code::InvalidDimension, 2);
    return packetsOf(context, level);
}

}  // namespace

aMatrix* create_level(EfiCallContext* context, aComplex* level, aComplex* dimension) {
    return toHost(context, createLevel(context, level, dimension));
}

aMatrix* create_level2d(EfiCallContext* context, aComplex* level) {
    return toHost(context, blocksOf(context, level));
}
