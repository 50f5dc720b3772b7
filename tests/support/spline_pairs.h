// The orders of the biorthogonal spline pairs that the pack has.
#pragma once

struct SplineOrders {
    int m;
    int n;
};

inline constexpr SplineOrders splinePairs[] = {{1, 1}, {1, 3}, {1, 5}, {2, 2}, {2, 4}, {2, 6},
                                               {2, 8}, {3, 1}, {3, 3}, {3, 5}, {3, 7}, {3, 9}};
