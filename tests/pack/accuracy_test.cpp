// How far results are from the same sums in a wider type, in units of 2^-53: at most twice as far as the
// largest figure that was found for each group at these sizes.
#include "accuracy/measures.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace accuracy;

namespace {

bool isSpline(const Wavelet& wavelet) {
    return wavelet.family == "bl" || wavelet.family == "Bspline";
}

class Accuracy : public testing::Test {
 protected:
    Measures measures{UNDULA_PACK_PATH};
};

}  // namespace

TEST_F(Accuracy, OfTransformsAndPackets) {
    for (const Wavelet& wavelet : measures.wavelets()) {
        for (const Treatment& treatment : treatments) {
            if (!treatment.takes(wavelet)) continue;
            SCOPED_TRACE(wavelet.name + ", dwt" + treatment.letter);
            for (Shape shape : {Shape{512, 1, 0}, {32, 32, 0}}) {
                shape.levels = treatment.deepest(wavelet, shape.rows);
                const Errors transform = measures.transform(treatment, wavelet, shape);
                const Errors packets = measures.packets(treatment, wavelet, shape);
                EXPECT_LT(std::fmax(transform.forward, transform.inverse), isSpline(wavelet) ? 8.4 : 6.6);
                EXPECT_LT(std::fmax(packets.forward, packets.inverse), isSpline(wavelet) ? 22 : 11);
            }
        }
    }
}

TEST_F(Accuracy, OfFunctionsAtPoints) {
    for (const Wavelet& wavelet : measures.wavelets()) {
        for (unsigned packet = 0; packet < (wavelet.taps() < 12 ? 12U : 4U); ++packet) {
            for (const bool dual : {false, true})
                EXPECT_LT(measures.function(wavelet, dual, packet, 100), 14) << wavelet.name << " " << packet;
        }
    }
}

// Powers of two, lengths of small and of large prime factors, even and odd.
TEST_F(Accuracy, OfTheCosineTransform) {
    for (const int length : {64, 1024, 1022, 1023, 255, 61, 122, 1021}) {
        const double largest = length % 61 == 0 ? 4 : 3.4;
        EXPECT_LT(measures.dct(length) / std::sqrt(std::log2(length)), largest) << length;
    }
}

TEST_F(Accuracy, OfLocalCosinesAndTheirBell) {
    for (const BellOf bell : {BellOf::Pack, BellOf::User}) {
        for (const Shape& shape : {Shape{1024, 1, 0}, {1024, 1, 3}, {32, 32, 0}, {32, 32, 2}}) {
            const Errors errors = measures.cosines(bell, shape);
            EXPECT_LT(std::fmax(errors.forward, errors.inverse), 7.6) << shape.rows << " " << shape.levels;
        }
    }
    for (const int halfLength : {1, 4, 100, 1000}) EXPECT_LT(bellError(halfLength), 10.6) << halfLength;
}
