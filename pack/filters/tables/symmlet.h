// Daubechies' least-asymmetric filters of 8 to 20 taps, N = taps / 2 vanishing moments.
//
// I. Daubechies, Ten Lectures on Wavelets (SIAM, 1992), Table 6.3. The published 12 decimals, sum 2.
// The order is that of the interior filters of the wavelets on the interval for 8 to 16 taps, with the
// centre of mass right of the middle for 18 and 20: the published rows reversed except for 16 and 18.
#pragma once

#include "filters/tables/daublet.h"

namespace undula::tables {

inline constexpr double symmlet8[] = {
    0.045570345896,
    -0.017824701442,
    -0.140317624179,
    0.421234534204,
    1.136658243408,
    0.703739068656,
    -0.041910965125,
    -0.107148901418,
};

inline constexpr double symmlet10[] = {
    0.027632152958,
    -0.029842499869,
    -0.247951362613,
    0.023478923136,
    0.896581648380,
    1.023052966894,
    0.281990696854,
    -0.055344186117,
    0.041746864422,
    0.038654795955,
};

inline constexpr double symmlet12[] = {
    -0.011031867509,
    0.002499922093,
    0.063250562660,
    -0.029783751299,
    -0.102724969862,
    0.477904371333,
    1.113892783926,
    0.694457972958,
    -0.068323121587,
    -0.166863215412,
    0.004936612372,
    0.021784700327,
};

inline constexpr double symmlet14[] = {
    0.014521394762,
    0.005671342686,
    -0.152463871896,
    -0.198056706807,
    0.408183939725,
    1.085782709814,
    0.758162601964,
    0.024665659489,
    -0.070078291222,
    0.096014767936,
    0.043155452582,
    -0.017870431651,
    -0.001481225915,
    0.003792658534,
};

inline constexpr double symmlet16[] = {
    0.002672793393,
    -0.000428394300,
    -0.021145686528,
    0.005386388754,
    0.069490465911,
    -0.038493521263,
    -0.073462508761,
    0.515398670374,
    1.099106630537,
    0.680745347190,
    -0.086653615406,
    -0.202648655286,
    0.010758611751,
    0.044823623042,
    -0.000766690896,
    -0.004783458512,
};

inline constexpr double symmlet18[] = {
    0.001512487309,
    -0.000669141509,
    -0.014515578553,
    0.012528896242,
    0.087791251554,
    -0.025786445930,
    -0.270893783503,
    0.049882830959,
    0.873048407349,
    1.015259790832,
    0.337658923602,
    -0.077172161097,
    0.000825140929,
    0.042744433602,
    -0.016303351226,
    -0.018769396836,
    0.000876502539,
    0.001981193736,
};

inline constexpr double symmlet20[] = {
    -0.000649589896,
    0.000080661204,
    0.006495728375,
    -0.001137535314,
    -0.028786231926,
    0.008152816799,
    0.070703567550,
    -0.045240772218,
    -0.050256540092,
    0.542813011213,
    1.088251530500,
    0.667071338154,
    -0.100240215031,
    -0.225558972234,
    0.016418869426,
    0.064950924579,
    -0.002072363923,
    -0.012220642630,
    0.000135245020,
    0.001089170447,
};

// With 4 and 6 taps there is no choice: the filters are those of extremal phase.
inline constexpr Published symmlets[] = {
    {daublet4},
    {daublet6},
    {symmlet8, Scaling::DividedByRoot},
    {symmlet10, Scaling::DividedByRoot},
    {symmlet12, Scaling::DividedByRoot},
    {symmlet14, Scaling::DividedByRoot},
    {symmlet16, Scaling::DividedByRoot},
    {symmlet18, Scaling::DividedByRoot},
    {symmlet20, Scaling::DividedByRoot},
};

}  // namespace undula::tables
