// Wavelets by name, as the scaling functions take them.
#include <iterator>
#include <sstream>

#include "support/pack.h"

namespace {

std::vector<std::string> wordsOf(const std::string& text) {
    std::istringstream words(text);
    return {std::istream_iterator<std::string>(words), {}};
}

class Names : public PackTest {
 protected:
    void expectFilter(const Value& filter, const std::string& names) {
        for (const std::string& name : wordsOf(names)) {
            const Value expected = call("wavelet", 0.4, 0, 0, 0, filter);
            EXPECT_TRUE(same(call("father", 0.4, name), expected)) << name;
        }
    }
    void expectRefused(const std::string& message, const std::vector<std::string>& names) {
        for (const std::string& name : names)
            EXPECT_EQ(complaint("father", 0, name), message + " (2)") << name.substr(0, 30);
    }
};

}  // namespace

TEST_F(Names, SelectTheFilterOfTheirFamily) {
    expectFilter(call("daublet", 4), "d4 daub4 daublet4 daub0004");
    expectFilter(call("symmlet", 8), "s8 symm8 symmlet8");
    expectFilter(call("coiflet", 6), "c6 coif6 coiflet6");
    expectFilter(call("bl", 0), "bl0");
    expectFilter(call("bl", 1), "bl1 bl00001");
    expectFilter(call("Bspline", 1, 3), "bs13 Bspline13");
    expectFilter(call("Bspline", 3, 9), "bs39");
    expectFilter(call("daublet", 2), "haar d2");
}

TEST_F(Names, AreLettersOfAFamilyAndDigits) {
    expectRefused(
        "invalid filter wavelet string",
        wordsOf("4 4daub da4b daub4a d daublet s bl bs bs1 bs123 Bspline1 haar2 HAAR Daub4 bspline13 daub-4 "
                "daub4.0 daubl4 b3 bs1a daub\xb2 daub\xd9\xa4 \xff"));
    expectRefused("invalid filter wavelet string",
                  {"", " ", "daub 4", "daub4 ", " daub4", std::string(10000, 'd')});
}

TEST_F(Names, AreRefusedAsTheirFamilyRefusesTheNumber) {
    const std::string digits(400, '9');
    // 2^64 + 4 and 2^32 + 4 taps are not 4.
    expectRefused(
        "filter unimplemented",
        wordsOf("daub22 symm2 coif8 bl7 bl4294967295 bs12 bs19 bs41 daub18446744073709551620 daub4294967300 "
                "daub" +
                digits + "8"));
    expectRefused("must be even integer", {"daub3", "coif7"});
    expectRefused("must be positive integer",
                  {"daub0", "daub" + std::string(400, '0'), "bs01", "bs10", "Bspline00"});
    expectRefused("invalid level", {"bl4294967296", "bl" + digits});
}
