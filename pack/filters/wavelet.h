// The wavelets: objects that know everything a transform needs to know of a filter bank.
//
// The operations and their order are fixed, those included that the pack itself has no use for: the
// lengths of the high-pass filters, which are those of the other channel's low-pass filters, and the
// auxiliary edge rows. Objects are never destroyed while the library is loaded, so that what has been
// selected stays valid.
#pragma once

#include <cstdint>

#include "filters/cascade.h"
#include "filters/filter_bank.h"

namespace undula {

class Wavelet {
 public:
    virtual const double* analysisLow() const = 0;
    virtual const double* synthesisLow() const = 0;
    virtual const double* analysisHigh() const = 0;
    virtual const double* synthesisHigh() const = 0;
    virtual std::int32_t analysisLowOffset() const = 0;
    virtual std::int32_t synthesisLowOffset() const = 0;
    virtual std::int32_t analysisHighOffset() const = 0;
    virtual std::int32_t synthesisHighOffset() const = 0;
    virtual std::int32_t analysisLowLength() const = 0;
    virtual std::int32_t synthesisLowLength() const = 0;
    virtual std::int32_t analysisHighLength() const = 0;
    virtual std::int32_t synthesisHighLength() const = 0;
    virtual const double* analysisCascade() const = 0;
    virtual const double* synthesisCascade() const = 0;
    // Boundary filters of the interval: none, unless a family has its own.
    virtual EdgeRows leftEdgeLow() const { return nullptr; }
    virtual EdgeRows leftEdgeHigh() const { return nullptr; }
    virtual EdgeRows rightEdgeLow() const { return nullptr; }
    virtual EdgeRows rightEdgeHigh() const { return nullptr; }
    virtual EdgeRows edgeAuxA() const { return nullptr; }
    virtual EdgeRows edgeAuxB() const { return nullptr; }
    virtual std::int32_t analysisHighFlipped() const = 0;
    virtual std::int32_t synthesisHighFlipped() const = 0;
    virtual std::int32_t isSymmetric() const = 0;
    virtual std::int32_t hasInterval() const = 0;
    virtual std::int32_t kind() const = 0;  // 1: orthonormal, 2: biorthogonal

 protected:
    ~Wavelet() = default;
};

// One low-pass filter for both directions; the high-pass filter follows from it. Families override
// what differs from the defaults given here.
class OrthonormalWavelet : public Wavelet {
 public:
    // Doubles that a wavelet works in, besides its low-pass filter.
    static constexpr std::int32_t workLength(std::int32_t taps) { return taps + cascadeLength(taps); }

    const double* analysisLow() const override { return h; }
    const double* synthesisLow() const override { return h; }
    const double* analysisHigh() const override { return g; }
    const double* synthesisHigh() const override { return g; }
    std::int32_t analysisLowOffset() const override { return 1 - (L + 1) / 2; }
    std::int32_t synthesisLowOffset() const override { return analysisLowOffset(); }
    std::int32_t analysisHighOffset() const override { return 1 - (L + 1) / 2; }
    std::int32_t synthesisHighOffset() const override { return analysisHighOffset(); }
    std::int32_t analysisLowLength() const override { return L; }
    std::int32_t synthesisLowLength() const override { return L; }
    std::int32_t analysisHighLength() const override { return L; }
    std::int32_t synthesisHighLength() const override { return L; }
    const double* analysisCascade() const override { return cascade; }
    const double* synthesisCascade() const override { return cascade; }
    std::int32_t analysisHighFlipped() const override { return 0; }
    std::int32_t synthesisHighFlipped() const override { return analysisHighFlipped(); }
    std::int32_t isSymmetric() const override { return 0; }
    std::int32_t hasInterval() const override { return 0; }
    std::int32_t kind() const override { return 1; }

 protected:
    // `work` receives the high-pass filter and the cascade table (workLength doubles). It and the
    // low-pass filter must live as long as the wavelet.
    OrthonormalWavelet(const double* low, std::int32_t taps, double* work);
    ~OrthonormalWavelet() = default;

    const double* h;
    double* g;
    double* cascade;
    std::int32_t L;
};

// The boundary filters of the interval, all four or none.
struct EdgeFilters {
    EdgeRows leftLow = nullptr;
    EdgeRows leftHigh = nullptr;
    EdgeRows rightLow = nullptr;
    EdgeRows rightHigh = nullptr;
};

// Families of which some wavelets carry boundary filters.
class IntervalWavelet : public OrthonormalWavelet {
 public:
    EdgeRows leftEdgeLow() const override { return edges.leftLow; }
    EdgeRows leftEdgeHigh() const override { return edges.leftHigh; }
    EdgeRows rightEdgeLow() const override { return edges.rightLow; }
    EdgeRows rightEdgeHigh() const override { return edges.rightHigh; }
    std::int32_t hasInterval() const override { return edges.leftLow != nullptr; }

 protected:
    IntervalWavelet(const double* low, std::int32_t taps, double* work, bool withEdges);
    ~IntervalWavelet() = default;

 private:
    EdgeFilters edges;
};

// Daubechies' extremal-phase filters; with two taps, the Haar filter.
class Daublet final : public IntervalWavelet {
 public:
    static constexpr std::int32_t longest = 20;

    Daublet(const double* low, std::int32_t taps, double* work)
        : IntervalWavelet(low, taps, work, 4 <= taps && taps <= 6) {}

    std::int32_t isSymmetric() const override { return L == 2; }
};

// Daubechies' least-asymmetric filters.
class Symmlet final : public IntervalWavelet {
 public:
    static constexpr std::int32_t longest = 20;

    Symmlet(const double* low, std::int32_t taps, double* work)
        : IntervalWavelet(low, taps, work, taps <= 16) {}
};

// Coiflets, whose length is a multiple of 6.
class Coiflet final : public OrthonormalWavelet {
 public:
    static constexpr std::int32_t longest = 30;

    Coiflet(const double* low, std::int32_t taps, double* work) : OrthonormalWavelet(low, taps, work) {}

    std::int32_t analysisLowOffset() const override { return -L / 3; }
    std::int32_t analysisHighOffset() const override { return 2 - 2 * L / 3; }
};

// The orthonormalised splines, whose filters are infinite and are cut off.
class BattleLemarie final : public OrthonormalWavelet {
 public:
    BattleLemarie(const double* low, std::int32_t taps, double* work, std::int32_t degree)
        : OrthonormalWavelet(low, taps, work), order(degree) {}

    std::int32_t analysisHighOffset() const override { return 1 - L / 2; }
    std::int32_t isSymmetric() const override { return 1; }

    const BattleLemarie* next = nullptr;
    std::int32_t order;
};

// A column of numbers given as a filter.
class UserDefinedOrthonormal final : public OrthonormalWavelet {
 public:
    UserDefinedOrthonormal(const double* low, std::int32_t taps, double* work, std::int32_t start, bool flip);

    std::int32_t analysisLowOffset() const override { return offset; }
    std::int32_t analysisHighOffset() const override { return 2 - offset - L; }
    std::int32_t analysisHighFlipped() const override { return flipHigh; }

    const UserDefinedOrthonormal* next = nullptr;

 private:
    std::int32_t offset;
    std::int32_t flipHigh;
};

// Two low-pass filters; each high-pass filter follows from the other channel's low-pass filter.
class BiorthogonalWavelet : public Wavelet {
 public:
    // Doubles that a wavelet works in, besides its low-pass filters.
    static constexpr std::int32_t workLength(std::int32_t tapsA, std::int32_t tapsS) {
        return tapsA + tapsS + cascadeLength(tapsA) + cascadeLength(tapsS);
    }

    const double* analysisLow() const override { return ha; }
    const double* synthesisLow() const override { return hs; }
    const double* analysisHigh() const override { return ga; }
    const double* synthesisHigh() const override { return gs; }
    std::int32_t analysisLowLength() const override { return La; }
    std::int32_t synthesisLowLength() const override { return Lb; }
    std::int32_t analysisHighLength() const override { return Lb; }
    std::int32_t synthesisHighLength() const override { return La; }
    const double* analysisCascade() const override { return cascadeA; }
    const double* synthesisCascade() const override { return cascadeS; }
    std::int32_t kind() const override { return 2; }

 protected:
    // `work` receives the high-pass filters and the cascade tables (workLength doubles). It and the
    // low-pass filters must live as long as the wavelet.
    BiorthogonalWavelet(const double* lowA, std::int32_t tapsA, const double* lowS, std::int32_t tapsS,
                        double* work);
    ~BiorthogonalWavelet() = default;

    const double* ha;
    double* ga;
    const double* hs;
    double* gs;
    double* cascadeA;
    double* cascadeS;
    std::int32_t La;
    std::int32_t Lb;
};

// Biorthogonal splines of orders m (synthesis) and n (analysis).
class BSpline final : public BiorthogonalWavelet {
 public:
    static constexpr std::int32_t longest = 20;  // of the analysis filters

    BSpline(const double* lowA, std::int32_t tapsA, const double* lowS, std::int32_t tapsS, double* work)
        : BiorthogonalWavelet(lowA, tapsA, lowS, tapsS, work), m(tapsS - 1), n((tapsA - tapsS + 2) / 2) {}

    std::int32_t analysisLowOffset() const override { return 1 - (La + 1) / 2; }
    std::int32_t synthesisLowOffset() const override { return 1 - (Lb + 1) / 2; }
    std::int32_t analysisHighOffset() const override { return 1 - Lb / 2; }
    std::int32_t synthesisHighOffset() const override { return 1 - La / 2; }
    std::int32_t analysisHighFlipped() const override { return 0; }
    std::int32_t synthesisHighFlipped() const override { return 0; }
    std::int32_t isSymmetric() const override { return 1; }
    std::int32_t hasInterval() const override { return 0; }

    const std::int32_t m;
    const std::int32_t n;
};

// The start offset and the sign of the high-pass filter of each channel.
struct ChannelSettings {
    std::int32_t offset[2] = {0, 0};  // of ha (and h), of hs
    bool flip[2] = {false, false};    // ga (and g) negated, gs negated
};

// Two columns of numbers given as a pair of filters.
class UserDefinedBiorthogonal final : public BiorthogonalWavelet {
 public:
    UserDefinedBiorthogonal(const double* lowA, std::int32_t tapsA, const double* lowS, std::int32_t tapsS,
                            double* work, const ChannelSettings& channels);

    std::int32_t analysisLowOffset() const override { return settings.offset[0]; }
    std::int32_t synthesisLowOffset() const override { return settings.offset[1]; }
    std::int32_t analysisHighOffset() const override { return 2 - settings.offset[1] - Lb; }
    std::int32_t synthesisHighOffset() const override { return 2 - settings.offset[0] - La; }
    std::int32_t analysisHighFlipped() const override { return settings.flip[0]; }
    std::int32_t synthesisHighFlipped() const override { return settings.flip[1]; }
    std::int32_t isSymmetric() const override { return 0; }
    std::int32_t hasInterval() const override { return 0; }

    const UserDefinedBiorthogonal* next = nullptr;

 private:
    ChannelSettings settings;
};

}  // namespace undula
