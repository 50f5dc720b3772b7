// get_subband, get_smooth, get_detail, put_subband, put_smooth, put_detail: parts of transformed
// signals.
#include "dwt/data_argument.h"
#include "frame/checks.h"
#include "frame/integers.h"
#include "frame/workers.h"

using namespace undula;

namespace {

constexpr double smoothIndex = 0.0;
constexpr double detailIndex = 1.0;

// Finds subband (level, index) of a vector; both are in range.
Result<Segment> locate(const aVector* vector, const aComplex* level, const aComplex* index) {
    const auto n = static_cast<std::uint64_t>(vector->rows);
    const std::uint32_t depth = asIndex(level->re);
    if (depth > deepestLevel(n)) return Failure(Code::InvalidLevel, 2);
    if (asIndex(index->re) >= std::uint64_t{1} << depth) return Failure(Code::InvalidPacketIndex, 3);
    return subband(n, depth, asIndex(index->re));
}

Result<Segment> checkGet(EfiCallContext* context, const aVector* vector, const aComplex* level,
                         const aComplex* index) {
    if (auto failure = requireRealVector(context, vector, 1)) return failure;
    if (auto failure = requireRealFrom(2, level, index)) return failure;
    if (auto failure = requireLevel(level->re, 2)) return failure;
    if (auto failure = requireWhole(index->re, 3)) return failure;
    if (auto failure = require32Bits(index->re, Code::InvalidPacketIndex, 3)) return failure;
    return locate(vector, level, index);
}

// Level and index need not be whole here: they are truncated.
Result<Segment> checkPut(EfiCallContext* context, const aVector* vector, const aComplex* level,
                         const aComplex* index, const aVector* part) {
    if (auto failure = requireRealVector(context, vector, 1)) return failure;
    if (auto failure = requireRealFrom(2, level, index)) return failure;
    if (auto failure = requireRealVector(context, part, 4)) return failure;
    if (auto failure = require32Bits(level->re, Code::InvalidLevel, 2)) return failure;
    if (auto failure = require32Bits(index->re, Code::InvalidPacketIndex, 3)) return failure;
    auto segment = locate(vector, level, index);
    if (segment && segment->length != static_cast<std::uint64_t>(part->rows))
        return Failure(Code::InvalidSubbandDimensions, 4);
    return segment;
}

Result<aMatrix*> getSubband(EfiCallContext* context, const aVector* vector, const aComplex* level,
                            const aComplex* index) {
    const auto segment = checkGet(context, vector, level, index);
    if (!segment) return segment.failure();
    auto part = newElements(segment->length, 1);
    if (part) copyPart(vector, {*segment, {0, 1}}, contiguous(part.data(), segment->length, 1));
    return newMatrix(context, static_cast<int>(segment->length), 1, part);
}

Result<aMatrix*> putSubband(EfiCallContext* context, const aVector* vector, const aComplex* level,
                            const aComplex* index, const aVector* part) {
    const auto segment = checkPut(context, vector, level, index, part);
    if (!segment) return segment.failure();
    auto result = copyOfElements(vector);
    if (result) copyElements(part, result.data() + segment->start);
    return newMatrix(context, vector->rows, 1, result);
}

// The index is not the user's, so no complaint names it.
HostValue getPart(EfiCallContext* context, const aVector* vector, const aComplex* level, double index) {
    const aComplex hidden = scalarOf(index);
    return toHost(context, reposition(getSubband(context, vector, level, &hidden), {1, 2, 0}));
}

HostValue putPart(EfiCallContext* context, const aVector* vector, const aComplex* level, double index,
                  const aVector* part) {
    const aComplex hidden = scalarOf(index);
    return toHost(context, reposition(putSubband(context, vector, level, &hidden, part), {1, 2, 0, 3}));
}

}  // namespace

aVector* get_subband(EfiCallContext* context, aVector* vector, aComplex* level, aComplex* index) {
    return toHost(context, getSubband(context, vector, level, index));
}

aVector* put_subband(EfiCallContext* context, aVector* vector, aComplex* level, aComplex* index,
                     aVector* part) {
    return toHost(context, putSubband(context, vector, level, index, part));
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
