#include "filters/edges.h"

#include <cstddef>

#include "filters/tables/edge.h"

namespace undula {

namespace {

constexpr std::int32_t mostMoments = 8;

// The rows of one side and band, one after the other: row i has N + 1 + 2i coefficients.
struct Band {
    const double* rows[mostMoments] = {};

    constexpr Band(const double* table, std::int32_t moments) {
        for (std::ptrdiff_t i = 0; i < moments; ++i) rows[i] = table + i * (moments + i);
    }
};

struct Edges {
    Band leftLow;
    Band leftHigh;
    Band rightLow;
    Band rightHigh;

    template <std::size_t n>
    constexpr Edges(std::int32_t moments, const double (&ll)[n], const double (&lh)[n], const double (&rl)[n],
                    const double (&rh)[n])
        : leftLow(ll, moments), leftHigh(lh, moments), rightLow(rl, moments), rightHigh(rh, moments) {}
};

using namespace tables;

constexpr Edges edges[] = {
    {2, leftEdgeLow2, leftEdgeHigh2, rightEdgeLow2, rightEdgeHigh2},
    {3, leftEdgeLow3, leftEdgeHigh3, rightEdgeLow3, rightEdgeHigh3},
    {4, leftEdgeLow4, leftEdgeHigh4, rightEdgeLow4, rightEdgeHigh4},
    {5, leftEdgeLow5, leftEdgeHigh5, rightEdgeLow5, rightEdgeHigh5},
    {6, leftEdgeLow6, leftEdgeHigh6, rightEdgeLow6, rightEdgeHigh6},
    {7, leftEdgeLow7, leftEdgeHigh7, rightEdgeLow7, rightEdgeHigh7},
    {8, leftEdgeLow8, leftEdgeHigh8, rightEdgeLow8, rightEdgeHigh8},
};

}  // namespace

EdgeFilters edgeFilters(std::int32_t taps) {
    const Edges& found = edges[taps / 2 - 2];
    return {found.leftLow.rows, found.leftHigh.rows, found.rightLow.rows, found.rightHigh.rows};
}

}  // namespace undula
