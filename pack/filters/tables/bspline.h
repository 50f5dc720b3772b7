// The biorthogonal spline pairs (m, n): the dual filters, whose synthesis filter is the B-spline of
// order m.
//
// A. Cohen, I. Daubechies, J.-C. Feauveau, Biorthogonal bases of compactly supported wavelets, Comm.
// Pure Appl. Math. 45 (1992) 485-560; also I. Daubechies, Ten Lectures on Wavelets (SIAM, 1992),
// Table 8.3. Exact binary fractions, sum 1. The filters are symmetric.
#pragma once

#include "filters/tables/published.h"

namespace undula::tables {

// The B-splines of order 1 to 3: binomial coefficients over 2^m.
inline constexpr double spline1[] = {1.0 / 2, 1.0 / 2};
inline constexpr double spline2[] = {1.0 / 4, 1.0 / 2, 1.0 / 4};
inline constexpr double spline3[] = {1.0 / 8, 3.0 / 8, 3.0 / 8, 1.0 / 8};

inline constexpr double dualSpline1_1[] = {
    1.0 / 2,
    1.0 / 2,
};
inline constexpr double dualSpline1_3[] = {
    -1.0 / 16,
    1.0 / 16,
    1.0 / 2,
    1.0 / 2,
    1.0 / 16,
    -1.0 / 16,
};
inline constexpr double dualSpline1_5[] = {
    3.0 / 256,
    -3.0 / 256,
    -11.0 / 128,
    11.0 / 128,
    1.0 / 2,
    1.0 / 2,
    11.0 / 128,
    -11.0 / 128,
    -3.0 / 256,
    3.0 / 256,
};
inline constexpr double dualSpline2_2[] = {
    -1.0 / 8,
    1.0 / 4,
    3.0 / 4,
    1.0 / 4,
    -1.0 / 8,
};
inline constexpr double dualSpline2_4[] = {
    3.0 / 128,
    -3.0 / 64,
    -1.0 / 8,
    19.0 / 64,
    45.0 / 64,
    19.0 / 64,
    -1.0 / 8,
    -3.0 / 64,
    3.0 / 128,
};
inline constexpr double dualSpline2_6[] = {
    -5.0 / 1024,
    5.0 / 512,
    17.0 / 512,
    -39.0 / 512,
    -123.0 / 1024,
    81.0 / 256,
    175.0 / 256,
    81.0 / 256,
    -123.0 / 1024,
    -39.0 / 512,
    17.0 / 512,
    5.0 / 512,
    -5.0 / 1024,
};
inline constexpr double dualSpline2_8[] = {
    35.0 / 32768,
    -35.0 / 16384,
    -75.0 / 8192,
    335.0 / 16384,
    307.0 / 8192,
    -1563.0 / 16384,
    -949.0 / 8192,
    5359.0 / 16384,
    11025.0 / 16384,
    5359.0 / 16384,
    -949.0 / 8192,
    -1563.0 / 16384,
    307.0 / 8192,
    335.0 / 16384,
    -75.0 / 8192,
    -35.0 / 16384,
    35.0 / 32768,
};
inline constexpr double dualSpline3_1[] = {
    -1.0 / 4,
    3.0 / 4,
    3.0 / 4,
    -1.0 / 4,
};
inline constexpr double dualSpline3_3[] = {
    3.0 / 64,
    -9.0 / 64,
    -7.0 / 64,
    45.0 / 64,
    45.0 / 64,
    -7.0 / 64,
    -9.0 / 64,
    3.0 / 64,
};
inline constexpr double dualSpline3_5[] = {
    -5.0 / 512,
    15.0 / 512,
    19.0 / 512,
    -97.0 / 512,
    -13.0 / 256,
    175.0 / 256,
    175.0 / 256,
    -13.0 / 256,
    -97.0 / 512,
    19.0 / 512,
    15.0 / 512,
    -5.0 / 512,
};
inline constexpr double dualSpline3_7[] = {
    35.0 / 16384,
    -105.0 / 16384,
    -195.0 / 16384,
    865.0 / 16384,
    363.0 / 16384,
    -3489.0 / 16384,
    -307.0 / 16384,
    11025.0 / 16384,
    11025.0 / 16384,
    -307.0 / 16384,
    -3489.0 / 16384,
    363.0 / 16384,
    865.0 / 16384,
    -195.0 / 16384,
    -105.0 / 16384,
    35.0 / 16384,
};
inline constexpr double dualSpline3_9[] = {
    -63.0 / 131072,
    189.0 / 131072,
    469.0 / 131072,
    -1911.0 / 131072,
    -327.0 / 32768,
    2297.0 / 32768,
    285.0 / 32768,
    -7419.0 / 32768,
    95.0 / 65536,
    43659.0 / 65536,
    43659.0 / 65536,
    95.0 / 65536,
    -7419.0 / 32768,
    285.0 / 32768,
    2297.0 / 32768,
    -327.0 / 32768,
    -1911.0 / 131072,
    469.0 / 131072,
    189.0 / 131072,
    -63.0 / 131072,
};

// A pair: the dual, which is the analysis filter, and the spline.
struct PublishedPair {
    Published dual;
    Published spline;

    template <std::size_t n, std::size_t m>
    constexpr PublishedPair(const double (&ofDual)[n], const double (&ofSpline)[m])
        : dual(ofDual, Scaling::TimesRoot), spline(ofSpline, Scaling::TimesRoot) {}
};

inline constexpr PublishedPair bsplines[] = {
    {dualSpline1_1, spline1}, {dualSpline1_3, spline1}, {dualSpline1_5, spline1}, {dualSpline2_2, spline2},
    {dualSpline2_4, spline2}, {dualSpline2_6, spline2}, {dualSpline2_8, spline2}, {dualSpline3_1, spline3},
    {dualSpline3_3, spline3}, {dualSpline3_5, spline3}, {dualSpline3_7, spline3}, {dualSpline3_9, spline3},
};

}  // namespace undula::tables
