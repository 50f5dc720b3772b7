// create_level, create_level2d: all subbands of one level, as a basis.
#include "frame/basis_rows.h"
#include "frame/checks.h"
#include "frame/workers.h"

using namespace undula;

namespace {

// Deeper levels would have more than 2^20 rows.
constexpr std::uint32_t deepestListed = 20;
constexpr std::uint32_t deepestListed2d = 10;

}  // namespace

aMatrix* create_level(EfiCallContext* context, aComplex* level, aComplex* dimension) {
    if (auto failure = requireReal(level, 1)) return fail(context, failure);
    if (auto failure = requireReal(dimension, 2)) return fail(context, failure);
    if (dimension->re == 2.0) return create_level2d(context, level);
    if (dimension->re != 1.0) return fail(context, {Code::InvalidDimension, 2});
    if (auto failure = requireLevel(level->re, 1)) return fail(context, failure);
    if (asIndex(level->re) > deepestListed) return fail(context, outOfMemory());
    const int count = 1 << asIndex(level->re);
    BasisRows rows(static_cast<std::uint64_t>(count), 2);
    if (!rows) return fail(context, outOfMemory());
    for (int i = 0; i < count; ++i) {
        if (interrupted(context)) return fail(context, interruption());
        rows.add(level->re, i);
    }
    return rows.result(context);
}

aMatrix* create_level2d(EfiCallContext* context, aComplex* level) {
    if (auto failure = requireReal(level, 1)) return fail(context, failure);
    if (auto failure = requireLevel(level->re, 1)) return fail(context, failure);
    if (asIndex(level->re) > deepestListed2d) return fail(context, outOfMemory());
    const int side = 1 << asIndex(level->re);
    BasisRows rows(static_cast<std::uint64_t>(side) * static_cast<std::uint64_t>(side), 3);
    if (!rows) return fail(context, outOfMemory());
    for (int i = 0; i < side; ++i) {
        for (int j = 0; j < side; ++j) {
            if (interrupted(context)) return fail(context, interruption());
            rows.add(level->re, i, j);
        }
    }
    return rows.result(context);
}
