// dwt and idwt, and how they find the wavelet that an array describes.
#include <cmath>

#include "support/failing_new.h"
#include "support/filter_pair.h"
#include "support/packets.h"

namespace {

class Transforms : public PackTest {
 protected:
    Value apply(const char* name, const Value& data, int levels, const std::vector<Value>& wavelet) {
        std::vector<Value> arguments = {data, levels};
        arguments.insert(arguments.end(), wavelet.begin(), wavelet.end());
        return host.call(pack(), name, arguments);
    }

    // Both directions, for signals and images.
    void expectDefinition(const FilterPair& pair, const std::vector<Value>& wavelet) {
        const PairBank bank(pair);
        struct Shape {
            int rows;
            int cols;
            int levels;
        };
        for (const Shape& shape :
             {Shape{2, 1, 1}, {16, 1, 4}, {24, 1, 3}, {40, 1, 1}, {16, 8, 3}, {6, 20, 1}, {4, 2, 0}}) {
            SCOPED_TRACE(std::to_string(shape.rows) + " x " + std::to_string(shape.cols));
            const Numbers x = noise(static_cast<std::size_t>(shape.rows * shape.cols));
            const Value data = Value::matrix(shape.rows, shape.cols, x);
            const auto expectResult = [&](const char* name, plain::Step* step, Direction direction) {
                const Numbers expected =
                    transformed(step, direction, bank, x, shape.rows, shape.cols, shape.levels);
                const Value result = apply(name, data, shape.levels, wavelet);
                EXPECT_EQ(result.rows(), shape.rows);
                EXPECT_EQ(result.matrix().im, nullptr);
                double largest = 0.0;
                for (const double value : expected) largest = std::fmax(largest, std::fabs(value));
                expectNear(result.reals(), expected, 1e-14 * largest);
            };
            expectResult("dwt", plain::periodicAnalysis, Direction::analysis);
            expectResult("idwt", plain::periodicSynthesis, Direction::synthesis);
        }
    }

    // Which numbers of the result a wavelet is told by: its taps, their places and signs.
    Numbers fingerprint(const std::vector<Value>& wavelet) {
        return apply("dwt", column({0, 0, 0, 1, 0, 0, 0, 0.5}), 1, wavelet).reals();
    }
};

using Selection = Transforms;

}  // namespace

TEST_F(Transforms, FollowTheDefinition) {
    const Numbers odd = {0.3, -0.2, 0.9};
    expectDefinition(orthonormal(odd, 0), {column(odd)});
    expectDefinition(orthonormal(odd, -2), {column(odd), -2});
    expectDefinition(orthonormal(odd, 5, true), {column(odd), 5, 1});
    expectDefinition(orthonormal({0.7}, 1), {column({0.7}), 1});

    const Value array = Value::matrix(5, 2, Numbers{0.1, 0.2, 0.3, 0.4, 0.5, 0.6, -0.7, 0.8, 0.0, 0.0});
    const FilterPair pair = {{0.1, 0.2, 0.3, 0.4, 0.5}, {0.6, -0.7, 0.8}};
    const auto with = [pair](int a, int s, bool flipA, bool flipS) {
        return FilterPair{pair.analysis, pair.synthesis, a, s, flipA, flipS};
    };
    expectDefinition(pair, {array});
    expectDefinition(with(-3, 2, false, false), {array, row({-3, 2})});
    expectDefinition(with(-3, 2, false, true), {array, row({-3, 2}), row({0, 1})});
    expectDefinition(with(40, -40, true, false), {array, row({40, -40}), row({1, 0})});

    // Filters longer than the data.
    const Numbers longest = noise(100);
    const Numbers reversed(longest.rbegin(), longest.rend());
    Numbers both = longest;
    both.insert(both.end(), reversed.begin(), reversed.end());
    expectDefinition(orthonormal(longest, -7), {column(longest), -7});
    expectDefinition({longest, reversed, -50, 3, false, true},
                     {Value::matrix(100, 2, both), row({-50, 3}), row({0, 1})});
}

TEST_F(Transforms, CopyAtLevelZero) {
    for (const Value& data :
         {column({3, -0.0, 5e-324}), row({1, 2, 3}), column({}), Value::matrix(0, 3, Numbers{}),
          Value::matrix(3, 0, Numbers{}), Value::matrix(0, 1, Numbers{}), column({7})}) {
        for (const char* name : {"dwt", "idwt"}) {
            const Value result = call(name, data, -0.0, haar());
            EXPECT_TRUE(same(result, data));
            EXPECT_NE(result.raw(), data.raw());
        }
    }
}

TEST_F(Selection, RecognisesBuiltInFilters) {
    for (const auto& [family, taps] :
         {std::pair("daublet", 4), {"symmlet", 8}, {"coiflet", 12}, {"daublet", 2}}) {
        SCOPED_TRACE(family);
        const Value builtIn = call(family, taps);
        const Numbers expected = fingerprint({builtIn});
        const auto scaled = [&](double factor) {
            Numbers h = builtIn.reals();
            for (double& tap : h) tap *= factor;
            return column(h);
        };
        // The built-in taps are used, not those that are nearly the same.
        EXPECT_EQ(fingerprint({scaled(1 + 9e-13)}), expected);
        EXPECT_EQ(fingerprint({scaled(1 - 9e-13)}), expected);
        EXPECT_NE(fingerprint({scaled(1 + 2e-12)}), expected);
        const double offset = family == std::string("coiflet") ? -taps / 3 : 1 - taps / 2;
        EXPECT_EQ(fingerprint({scaled(1 + 9e-13), offset}), expected);
        EXPECT_EQ(fingerprint({scaled(1 + 9e-13), offset, 0}), expected);
        EXPECT_NE(fingerprint({builtIn, offset, 1}), expected);
        EXPECT_NE(fingerprint({builtIn, offset + 1}), expected);
        // A filter that is a little off is the user's, which starts at 0 unless told otherwise.
        EXPECT_EQ(fingerprint({scaled(1 + 2e-12)}), fingerprint({scaled(1 + 2e-12), 0}));
    }
}

TEST_F(Selection, ComparesTapsThatAreZeroOrTiny) {
    const Numbers exact = fingerprint({column({0.5, 0.0, 0.25})});
    EXPECT_EQ(fingerprint({column({0.5, -0.0, 0.25})}), exact);
    EXPECT_NE(fingerprint({column({0.5, 1e-300, 0.25})}), exact);
    EXPECT_NE(fingerprint({column({0.5, 0.0, -0.25})}), exact);
    // Neither sums nor differences of the largest numbers overflow in a comparison.
    EXPECT_EQ(complaint("dwt", column({1, 2}), 0, column({1e308})), "overflow (0)");
    const Value large = column({1.5e60, -1.5e60});
    EXPECT_EQ(complaint("dwt", column({1, 2}), 0, large), "no error");
    EXPECT_EQ(complaint("dwt", column({1, 2}), 0, column({-1.5e60, 1.5e60})), "no error");
}

// An offset is a number that a user writes: the memory of a step must not follow it.
TEST_F(Selection, TakesFarOffsets) {
    const Value filter = column({0.5, 0.25, 0.125});
    const Value x = column(noise(8));
    const long before = allocatedBytes();
    for (const double offset : {0x1p24, -0x1p24, 8000.0}) {
        EXPECT_EQ(fingerprint({filter, offset}), fingerprint({filter, 0})) << offset;
        expectNear(numbers("idwt", x, 1, filter, offset), numbers("idwt", x, 1, filter, 0), 1e-15);
    }
    EXPECT_LT(allocatedBytes() - before, 100000);
}

// Everything that a call asks for besides its result, as a part of it.
TEST_F(Transforms, TakeLittleMemory) {
    const Value filter = call("daublet", 8);
    struct Case {
        const char* name;
        int rows;
        int cols;
        int levels;
        double share;
    };
    for (const auto& [name, rows, cols, levels, share] : {Case{"dwt", 1 << 16, 1, 5, 0.76},
                                                          {"dwt", 1 << 20, 1, 5, 0.15},
                                                          {"idwt", 1 << 16, 1, 5, 0.76},
                                                          {"idwt", 1 << 20, 1, 5, 0.76},
                                                          {"dwt", 512, 512, 4, 0.18},
                                                          {"idwt", 512, 512, 4, 0.07}}) {
        const Value data = Value::matrix(rows, cols, noise(static_cast<std::size_t>(rows * cols)));
        const double size = 8.0 * rows * cols;
        const long before = allocatedBytes();
        const Value result = call(name, data, levels, filter);
        EXPECT_LT(static_cast<double>(allocatedBytes() - before) - size, share * size) << name << rows;
    }
}

// Though others come in between.
TEST_F(Selection, KeepsEachWaveletOnce) {
    const auto useAll = [&] {
        for (const double tap : {0.25, 0.5}) {
            const Value pair = strided(2, 2, {tap, 0.5, 0.125, 0.0});
            for (const auto& wavelet : {std::vector<Value>{column({tap, 0.125})}, {pair, row({0, 3})}})
                fingerprint(wavelet);
        }
    };
    useAll();
    const long before = liveAllocations();
    for (int i = 0; i < 3; ++i) useAll();
    EXPECT_EQ(liveAllocations(), before);
}
