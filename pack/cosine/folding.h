// Folding: what makes cosines of neighbouring segments overlap smoothly and stay orthogonal.
//
// Sources: R. R. Coifman, Y. Meyer, Remarques sur l'analyse de Fourier a fenetre, C. R. Acad. Sci.
// Paris 312 (1991) 259-261; M. V. Wickerhauser, Adapted Wavelet Analysis from Theory to Software
// (A K Peters, 1994), chapter 4.
#pragma once

#include <cstddef>

#include "cosine/bell.h"

namespace undula {

// Signals side by side: sample p of signal s is origin[p * stride + s].
struct Lines {
    double* origin;
    std::ptrdiff_t stride = 1;
    std::ptrdiff_t count = 1;
};

// Samples start .. start + length - 1 of a period.
struct CosineSegment {
    std::ptrdiff_t start;
    std::ptrdiff_t length;  // at least twice the bell's half-length
};

// Folds a segment of periodic signals with its neighbours: out position p of the segment is from
// in[start + p] and, within half a bell of an end, from its mirror image beyond that end.
void fold(const Lines& in, std::ptrdiff_t period, const CosineSegment& segment, const BellSamples& bell,
          const Lines& out);

// The adjoint: adds a segment, and its mirror images beyond the ends, to the signals in `out`. With
// rising^2 + falling^2 = 1 it undoes the folding of all segments.
void unfold(const Lines& in, std::ptrdiff_t period, const CosineSegment& segment, const BellSamples& bell,
            const Lines& out);

}  // namespace undula
