// dwt and idwt, and how they find the wavelet that an array describes.
#include <cmath>
#include <cstring>

#include "support/failing_new.h"
#include "support/filter_pair.h"

namespace {

class Transforms : public PackTest {
 protected:
    // Both directions, for a signal and for images, in the form that writes offsets and flips.
    void expectDefinition(const FilterPair& pair, const std::vector<Value>& wavelet) {
        struct Shape {
            int rows;
            int cols;
            int levels;
        };
        for (const auto [rows, cols, levels] :
             {Shape{2, 1, 1}, {16, 1, 4}, {24, 1, 3}, {40, 1, 1}, {16, 8, 3}, {6, 20, 1}, {4, 2, 0}}) {
            SCOPED_TRACE(std::to_string(rows) + " x " + std::to_string(cols));
            const Numbers x = noise(static_cast<std::size_t>(rows * cols));
            const Value data = Value::matrix(rows, cols, x);
            expectResult("dwt", data, levels, wavelet, transformed(pair, x, rows, cols, levels));
            expectResult("idwt", data, levels, wavelet, reconstructed(pair, x, rows, cols, levels));
        }
    }

 private:
    void expectResult(const char* name, const Value& data, int levels, const std::vector<Value>& wavelet,
                      const Numbers& expected) {
        std::vector<Value> arguments = {data, levels};
        arguments.insert(arguments.end(), wavelet.begin(), wavelet.end());
        const Value result = host.call(pack(), name, arguments);
        EXPECT_EQ(result.rows(), data.rows());
        EXPECT_EQ(result.cols(), data.cols());
        EXPECT_EQ(result.matrix().im, nullptr);
        double largest = 0.0;
        for (const double value : expected) largest = std::fmax(largest, std::fabs(value));
        expectNear(result.reals(), expected, 1e-14 * largest);
    }
};

class Selection : public Transforms {
 protected:
    // Which numbers of the result a wavelet is told by: its taps, their places and signs.
    Numbers fingerprint(const std::vector<Value>& wavelet) {
        std::vector<Value> arguments = {column({0, 0, 0, 1, 0, 0, 0, 0.5}), 1};
        arguments.insert(arguments.end(), wavelet.begin(), wavelet.end());
        return host.call(pack(), "dwt", arguments).reals();
    }
};

Value haar() {
    return column({0.7071067811865475, 0.7071067811865475});
}

// Every byte that a matrix and its arrays are made of.
std::string bytesOf(const Value& value) {
    const aMatrix& matrix = value.matrix();
    std::string bytes(reinterpret_cast<const char*>(&matrix), sizeof matrix);
    const auto size =
        sizeof(double) * static_cast<std::size_t>(matrix.stride) * static_cast<std::size_t>(matrix.cols);
    for (const double* array : {matrix.re, matrix.im}) {
        if (array) bytes.append(reinterpret_cast<const char*>(array), size);
    }
    return bytes;
}

}  // namespace

TEST_F(Transforms, FollowTheDefinition) {
    for (const int taps : {2, 4, 12}) {
        const Value filter = call("daublet", taps);
        expectDefinition(orthonormal(filter.reals(), 1 - taps / 2), {filter});
    }
    for (const int taps : {6, 30}) {
        const Value filter = call("coiflet", taps);
        expectDefinition(orthonormal(filter.reals(), -taps / 3), {filter});
    }
    const Numbers odd = {0.3, -0.2, 0.9};
    expectDefinition(orthonormal(odd, 0), {column(odd)});
    expectDefinition(orthonormal(odd, -2), {column(odd), -2});
    expectDefinition(orthonormal(odd, 5, true), {column(odd), 5, 1});
    expectDefinition(orthonormal({0.7}, 1), {column({0.7}), 1});
}

TEST_F(Transforms, FollowTheDefinitionWithPairs) {
    const Value array = Value::matrix(5, 2, Numbers{0.1, 0.2, 0.3, 0.4, 0.5, 0.6, -0.7, 0.8, 0.0, 0.0});
    FilterPair pair = {{0.1, 0.2, 0.3, 0.4, 0.5}, {0.6, -0.7, 0.8}, 0, 0, false, false};
    expectDefinition(pair, {array});
    pair.analysisOffset = -3;
    pair.synthesisOffset = 2;
    expectDefinition(pair, {array, row({-3, 2})});
    pair.flipSynthesis = true;
    expectDefinition(pair, {array, row({-3, 2}), row({0, 1})});
    pair.flipAnalysis = true;
    pair.flipSynthesis = false;
    pair.analysisOffset = 40;
    pair.synthesisOffset = -40;
    expectDefinition(pair, {array, row({40, -40}), row({1, 0})});
}

TEST_F(Transforms, TakeFiltersLongerThanTheData) {
    const Numbers longest = noise(100);
    expectDefinition(orthonormal(longest, -7), {column(longest), -7});
    Numbers both = longest;
    both.insert(both.end(), longest.rbegin(), longest.rend());
    expectDefinition({longest, {longest.rbegin(), longest.rend()}, -50, 3, false, true},
                     {Value::matrix(100, 2, both), row({-50, 3}), row({0, 1})});
}

TEST_F(Transforms, PutEachBandInItsPlace) {
    const double root = std::sqrt(2.0);
    expectNear(numbers("dwt", column(Numbers(8, 1.0)), 3, haar()), {root * 2, 0, 0, 0, 0, 0, 0, 0}, 1e-15);
    expectNear(numbers("dwt", column({1, -1, 1, -1, 1, -1, 1, -1}), 3, haar()),
               {0, 0, 0, 0, root, root, root, root}, 1e-15);
    expectNear(numbers("dwt", column({1, 1, -1, -1, 1, 1, -1, -1}), 3, haar()), {0, 0, 2, 2, 0, 0, 0, 0},
               1e-15);
    expectNear(numbers("dwt", column({1, 1, 1, 1, -1, -1, -1, -1}), 3, haar()),
               {0, root * 2, 0, 0, 0, 0, 0, 0}, 1e-15);

    // By columns: constant, alternating down each column, along each row, and both.
    const auto bands = [this](double down, double along, int levels) {
        Numbers image;
        for (int c = 0; c < 4; ++c) {
            for (int r = 0; r < 4; ++r) image.push_back(std::pow(down, r) * std::pow(along, c));
        }
        return numbers("dwt", Value::matrix(4, 4, image), levels, haar());
    };
    expectNear(bands(1, 1, 2), {4, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0}, 1e-14);
    expectNear(bands(-1, 1, 1), {0, 0, 2, 2, 0, 0, 2, 2, 0, 0, 0, 0, 0, 0, 0, 0}, 1e-14);
    expectNear(bands(1, -1, 1), {0, 0, 0, 0, 0, 0, 0, 0, 2, 2, 0, 0, 2, 2, 0, 0}, 1e-14);
    expectNear(bands(-1, -1, 1), {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 2, 2, 0, 0, 2, 2}, 1e-14);
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

TEST_F(Transforms, ReadStridesAndAbsentArrays) {
    const Numbers values = noise(32);
    const Numbers taps = {0.3, 0.1, 0.2, 0.4};
    const Value compactPair = Value::matrix(2, 2, taps);
    const Value data = strided(8, 4, values);
    const Value pair = strided(2, 2, taps);
    const Value offsets = strided(1, 2, {1, -1});
    const Value flips = strided(1, 2, {0, 1});
    for (const char* name : {"dwt", "idwt"}) {
        const std::string before = bytesOf(data) + bytesOf(pair) + bytesOf(offsets) + bytesOf(flips);
        EXPECT_TRUE(same(call(name, data, 2, pair, offsets, flips),
                         call(name, Value::matrix(8, 4, values), 2, compactPair, row({1, -1}), row({0, 1}))));
        EXPECT_EQ(bytesOf(data) + bytesOf(pair) + bytesOf(offsets) + bytesOf(flips), before);

        EXPECT_EQ(numbers(name, Value::adopt(8, 1, nullptr), 3, haar()), Numbers(8));
        EXPECT_EQ(numbers(name, Value::adopt(4, 4, nullptr), 2, haar()), Numbers(16));
        EXPECT_EQ(numbers(name, column({1, 2, 3, 4}), 1, Value::adopt(3, 1, nullptr)), Numbers(4));
        EXPECT_TRUE(same(
            call(name, column(values), 2, haar(), Value::adopt(1, 1, nullptr), Value::adopt(1, 1, nullptr)),
            call(name, column(values), 2, haar())));
    }
}

TEST_F(Transforms, AcceptImaginaryPartsThatAreZero) {
    const Numbers x = {1, 2, 3, 4};
    const Value data = Value::column(x, Numbers{0.0, -0.0, 0.0, -0.0});
    EXPECT_TRUE(same(call("dwt", data, std::complex(1.0, -0.0), haar()), call("dwt", column(x), 1, haar())));
}

TEST_F(Transforms, ShareTheirFormsWithTheWorkers) {
    const Value x = column(noise(8));
    const Value filter = column({0.5, 0.25, 0.125});
    const Value three = call("dwt", x, 2, filter);
    EXPECT_TRUE(same(call("dwt", x, 2, filter, 0), three));
    EXPECT_TRUE(same(call("dwt", x, 2, filter, 0, 0), three));
    EXPECT_TRUE(same(call("dwt", x, 2, filter, column({0}), column({0})), three));
    EXPECT_FALSE(same(call("dwt", x, 2, filter, 1), three));
}

TEST_F(Transforms, PollOncePerUnitOfWork) {
    const auto polls = [this](const char* name, const Value& data, int levels) {
        host.clear();
        call(name, data, levels, haar());
        return host.polls();
    };
    const Value signal = column(noise(64));
    const Value image = Value::matrix(64, 16, noise(1024));
    for (const int levels : {0, 1, 6}) {
        EXPECT_EQ(polls("dwt", signal, levels), levels);
        EXPECT_EQ(polls("idwt", signal, levels), levels);
    }
    EXPECT_EQ(polls("dwt", image, 4), 0);
    EXPECT_EQ(polls("idwt", image, 0), 0);
    EXPECT_EQ(polls("idwt", image, 4), (64 + 16) + (32 + 8) + (16 + 4) + (8 + 2));
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

TEST_F(Selection, WrapsFarOffsets) {
    const Value filter = column({0.5, 0.25, 0.125});
    for (const double offset : {16777216.0, -16777216.0, 8000.0, -8000.0}) {
        EXPECT_EQ(fingerprint({filter, offset}), fingerprint({filter, 0})) << offset;
    }
    const Value x = column(noise(8));
    for (const double offset : {16777216.0, -16777216.0}) {
        expectNear(numbers("idwt", x, 3, filter, offset), numbers("idwt", x, 3, filter, 0), 1e-15);
        const Value pair = Value::matrix(2, 2, Numbers{0.5, 0.25, 0.125, 0.5});
        expectNear(numbers("idwt", x, 3, pair, row({offset, -offset})),
                   numbers("idwt", x, 3, pair, row({0, 0})), 1e-15);
    }
}

TEST_F(Selection, KeepsEachWaveletOnce) {
    const Value x = column(noise(8));
    const auto useAll = [&] {
        for (const char* name : {"dwt", "idwt"}) {
            for (const double tap : {0.25, 0.5}) {
                const Numbers pair = {tap, 0.5, 0.125, 0.0};
                call(name, x, 1, column({tap, 0.125}));
                call(name, x, 1, column({tap, 0.125}), 3);
                call(name, x, 1, column({tap, 0.125}), 3, 1);
                call(name, x, 1, Value::matrix(2, 2, pair));
                call(name, x, 1, strided(2, 2, pair));
                call(name, x, 1, Value::matrix(2, 2, pair), row({0, 3}));
                call(name, x, 1, Value::matrix(2, 2, pair), row({0, 3}), row({1, 0}));
            }
        }
    };
    useAll();
    const long before = liveAllocations();
    for (int i = 0; i < 3; ++i) useAll();
    EXPECT_EQ(liveAllocations(), before);
}

// A call that fails after its wavelet was selected does not disturb the next, nor does one that
// selects another in between.
TEST_F(Selection, StandsOnItsOwn) {
    const Value x = column(noise(8));
    const Value filter = column({0.5, 0.375});
    const Value expected = call("dwt", x, 1, filter);
    complaint("dwt", x, 99, haar());
    EXPECT_TRUE(same(call("dwt", x, 1, filter), expected));
    call("symmlet", 20);
    complaint("dwt", x, 1, filter, 0.5);
    EXPECT_TRUE(same(call("dwt", x, 1, filter), expected));
}
