// Wavelets by name. No function takes a name by itself, so the pack's own code is linked in here.
#include "filters/names.h"

#include <gtest/gtest.h>

#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include "filters/active_filter.h"
#include "support/failing_new.h"
#include "support/test_host.h"

using efihost::Value;

namespace {

std::vector<std::string> wordsOf(const std::string& text) {
    std::istringstream words(text);
    return {std::istream_iterator<std::string>(words), {}};
}

class Names : public testing::Test {
 protected:
    ~Names() override { EXPECT_EQ(host.leaks(), TestHost::Leaks{}); }

    Value select(std::string_view name) {
        const Value text(name);
        efihost::Call call(host);
        return call.finish(undula::selectWaveletString(call.context(), static_cast<aString*>(text.raw())));
    }
    // "message (index)" of the error, or "no error".
    std::string complaint(std::string_view name) {
        const Value result = select(name);
        if (!result) return "no result";
        if (!result.isError()) return "no error";
        return result.message() + " (" + std::to_string(result.argument()) + ")";
    }

    TestHost host;
};

}  // namespace

TEST_F(Names, SelectTheNamedWaveletAndAnswerItsFilter) {
    struct Case {
        const char* names;
        int taps;
        int columns;
        double firstTap;
    };
    constexpr double root = 1.4142135623730951;
    const Case known[] = {
        {"d4 daub4 daublet4 daub0004", 4, 1, 0.48296291314453414},
        {"s8 symm8 symmlet8", 8, 1, 0.032223100604042},
        {"c6 coif6 coiflet6", 6, 1, -0.072732619512854},
        {"bl0", 40, 1, 0.0},
        {"bl00001", 39, 1, 4e-8},
        {"bs13 Bspline13", 6, 2, -root / 16},
        {"bs39", 20, 2, -root * 63 / 131072},
        {"haar d2", 2, 1, root / 2},
    };
    for (const auto& [names, taps, columns, firstTap] : known) {
        for (const std::string& name : wordsOf(names)) {
            SCOPED_TRACE(name);
            const Value filter = select(name);
            ASSERT_TRUE(filter.isMatrix());
            EXPECT_EQ(filter.rows(), taps);
            EXPECT_EQ(filter.cols(), columns);
            EXPECT_NEAR(filter.at(0, 0).real(), firstTap, 1e-6);
            EXPECT_EQ(undula::ActiveFilter.La, taps);
            EXPECT_EQ(undula::ActiveFilter.ha[1], filter.at(1, 0).real());
        }
    }
}

TEST_F(Names, RefuseWhatIsNoName) {
    std::vector<std::string> malformed = wordsOf(
        "4 4daub da4b daub4a daub d daublet s symm symmlet c coif coiflet bl bs Bspline bs1 bs123 Bspline1 "
        "bs0013 haar2 haar0 Haar HAAR Daub4 DAUB4 bspline13 BS13 Bl3 daub-4 daub+4 daub4.0 daub_4 x4 daubl4 "
        "coifl6 b3 bs1a dauub4 daub\xb2 d\xe9"
        "4 daub\xd9\xa4 \xff");
    for (const char* name : {"", " ", "daub 4", "daub4 ", " daub4", "daub4\n"}) malformed.emplace_back(name);
    malformed.emplace_back(10000, 'd');
    for (const std::string& name : malformed)
        EXPECT_EQ(complaint(name), "invalid filter wavelet string (1)") << name.substr(0, 20);
}

// A name that is refused leaves the wavelet selected before.
TEST_F(Names, ReportTheFamilysOwnComplaintAndKeepTheSelection) {
    const std::string digits(400, '9');
    const std::string zeros(400, '0');
    const std::pair<std::string, std::string> refused[] = {
        {"filter unimplemented (1)", "daub22 symm2 coif8 bl7 bl4294967295 bs12 bs19 bs41"},
        // 2^64 + 4 and 2^32 + 4 taps are not 4.
        {"filter unimplemented (1)", "daub18446744073709551620 daub4294967300 daub" + digits + "8"},
        {"must be even integer (1)", "daub3 coif7"},
        {"must be positive integer (1)", "daub0 daub" + zeros + " bs01 bs10 Bspline00"},
        {"invalid level (1)", "bl4294967296 bl" + digits},
    };
    select("s8");
    const undula::Wavelet* before = undula::ActiveFilter.selected;
    for (const auto& [expected, names] : refused) {
        for (const std::string& name : wordsOf(names))
            EXPECT_EQ(complaint(name), expected) << name.substr(0, 30);
    }
    EXPECT_EQ(undula::ActiveFilter.selected, before);
}

TEST_F(Names, ReportLackOfMemoryAboutTheCall) {
    for (const char* name : {"daub4", "bl2", "bs39", "haar"}) {
        host.failAllocation(1);
        EXPECT_EQ(complaint(name), "out of memory (0)") << name;
        const FailingNew refused(1);
        const std::string answer = complaint(name);
        EXPECT_EQ(answer, refused.happened() ? "out of memory (0)" : "no error") << name;
    }
}
