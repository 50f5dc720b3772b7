// get_subband, get_smooth, get_detail, put_subband, put_smooth, put_detail: parts of transformed
// signals.
#include <algorithm>

#include "dwt/subband_layout.h"
#include "frame/checks.h"
#include "frame/halving.h"
#include "frame/workers.h"

using namespace undula;

namespace {

constexpr double smoothIndex = 0.0;
constexpr double detailIndex = 1.0;

// Finds subband (level, index) of a vector; both are in range.
Failure locate(const aVector* vector, const aComplex* level, const aComplex* index, Segment& segment) {
    const auto n = static_cast<std::uint64_t>(vector->rows);
    const std::uint32_t depth = asIndex(level->re);
    if (depth > deepestLevel(n)) return {Code::InvalidLevel, 2};
    if (asIndex(index->re) >= std::uint64_t{1} << depth) return {Code::InvalidPacketIndex, 3};
    segment = subband(n, depth, asIndex(index->re));
    return {};
}

Failure checkGet(EfiCallContext* context, const aVector* vector, const aComplex* level, const aComplex* index,
                 Segment& segment) {
    if (auto failure = requireRealVector(context, vector, 1)) return failure;
    if (auto failure = requireReal(level, 2)) return failure;
    if (auto failure = requireReal(index, 3)) return failure;
    if (auto failure = requireLevel(level->re, 2)) return failure;
    if (auto failure = requireWhole(index->re, 3)) return failure;
    if (auto failure = require32Bits(index->re, Code::InvalidPacketIndex, 3)) return failure;
    return locate(vector, level, index, segment);
}

// Level and index need not be whole here: they are truncated.
Failure checkPut(EfiCallContext* context, const aVector* vector, const aComplex* level, const aComplex* index,
                 const aVector* part, Segment& segment) {
    if (auto failure = requireRealVector(context, vector, 1)) return failure;
    if (auto failure = requireReal(level, 2)) return failure;
    if (auto failure = requireReal(index, 3)) return failure;
    if (auto failure = requireRealVector(context, part, 4)) return failure;
    if (auto failure = require32Bits(level->re, Code::InvalidLevel, 2)) return failure;
    if (auto failure = require32Bits(index->re, Code::InvalidPacketIndex, 3)) return failure;
    if (auto failure = locate(vector, level, index, segment)) return failure;
    const bool fits = segment.length == static_cast<std::uint64_t>(part->rows);
    return fits ? Failure() : Failure(Code::InvalidSubbandDimensions, 4);
}

// The index is not the user's, so no complaint names it.
aVector* getPart(EfiCallContext* context, aVector* vector, aComplex* level, double index) {
    if (auto failure = requireRealVector(context, vector, 1)) return fail(context, failure);
    if (auto failure = requireReal(level, 2)) return fail(context, failure);
    aComplex hidden = scalarOf(index);
    return reposition(get_subband(context, vector, level, &hidden), {1, 2, 0});
}

aVector* putPart(EfiCallContext* context, aVector* vector, aComplex* level, double index, aVector* part) {
    if (auto failure = requireRealVector(context, vector, 1)) return fail(context, failure);
    if (auto failure = requireReal(level, 2)) return fail(context, failure);
    if (auto failure = requireRealVector(context, part, 3)) return fail(context, failure);
    aComplex hidden = scalarOf(index);
    return reposition(put_subband(context, vector, level, &hidden, part), {1, 2, 0, 3});
}

}  // namespace

aVector* get_subband(EfiCallContext* context, aVector* vector, aComplex* level, aComplex* index) {
    Segment segment = {};
    if (auto failure = checkGet(context, vector, level, index, segment)) return fail(context, failure);
    auto part = newElements(segment.length, 1);
    for (std::size_t i = 0; part && i < segment.length; ++i) {
        part[i] = element(vector, static_cast<int>(segment.start + i), 0);
    }
    return static_cast<aVector*>(resultMatrix(context, static_cast<int>(segment.length), 1, part));
}

aVector* put_subband(EfiCallContext* context, aVector* vector, aComplex* level, aComplex* index,
                     aVector* part) {
    Segment segment = {};
    if (auto failure = checkPut(context, vector, level, index, part, segment)) return fail(context, failure);
    auto result = copyOfElements(vector);
    if (result) copyElements(part, result.data() + segment.start);
    return static_cast<aVector*>(resultMatrix(context, vector->rows, 1, result));
}

aVector* get_smooth(EfiCallContext* context, aVector* vector, aComplex* level) {
    return getPart(context, vector, level, smoothIndex);
}

aVector* get_detail(EfiCallContext* context, aVector* vector, aComplex* level) {
    return getPart(context, vector, level, detailIndex);
}

aVector* put_smooth(EfiCallContext* context, aVector* vector, aComplex* level, aVector* part) {
    return putPart(context, vector, level, smoothIndex, part);
}

aVector* put_detail(EfiCallContext* context, aVector* vector, aComplex* level, aVector* part) {
    return putPart(context, vector, level, detailIndex, part);
}
