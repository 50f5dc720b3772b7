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
        const char* name;
        int taps;
        int columns;
        double firstTap;
    };
    constexpr double root = 1.4142135623730951;
    const Case known[] = {
        {"d4", 4, 1, 0.48296291314453414},
        {"daub4", 4, 1, 0.48296291314453414},
        {"daublet4", 4, 1, 0.48296291314453414},
        {"daub0004", 4, 1, 0.48296291314453414},
        {"s8", 8, 1, 0.032223100604042},
        {"symm8", 8, 1, 0.032223100604042},
        {"symmlet8", 8, 1, 0.032223100604042},
        {"c6", 6, 1, -0.072732619512854},
        {"coif6", 6, 1, -0.072732619512854},
        {"coiflet6", 6, 1, -0.072732619512854},
        {"bl0", 40, 1, 0.0},
        {"bl00001", 39, 1, 4e-8},
        {"bs13", 6, 2, -root / 16},
        {"Bspline13", 6, 2, -root / 16},
        {"haar", 2, 1, root / 2},
        {"d2", 2, 1, root / 2},
    };
    for (const auto& [name, taps, columns, firstTap] : known) {
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

TEST_F(Names, KnowEveryLengthAndOrder) {
    const auto expectKnown = [&](const std::string& name) { EXPECT_EQ(complaint(name), "no error") << name; };
    for (int taps = 2; taps <= 20; taps += 2) expectKnown("daub" + std::to_string(taps));
    for (int taps = 4; taps <= 20; taps += 2) expectKnown("symm" + std::to_string(taps));
    for (int taps = 6; taps <= 30; taps += taps < 30 ? 6 : 1) expectKnown("coif" + std::to_string(taps));
    for (int degree = 0; degree <= 6; ++degree) expectKnown("bl" + std::to_string(degree));
    for (const char* pair : {"11", "13", "15", "22", "24", "26", "28", "31", "33", "35", "37", "39"}) {
        expectKnown(std::string("bs") + pair);
    }
}

TEST_F(Names, RefuseWhatIsNoName) {
    std::istringstream words(
        "4 4daub da4b daub4a daub d daublet s symm symmlet c coif coiflet bl bs Bspline bs1 bs123 Bspline1 "
        "bs0013 haar2 haar0 Haar HAAR Daub4 DAUB4 bspline13 BS13 Bl3 daub-4 daub+4 daub4.0 daub_4 x4 daubl4 "
        "coifl6 b3 bs1a dauub4 daub\xb2 d\xe9"
        "4 daub\xd9\xa4 \xff");
    std::vector<std::string> malformed(std::istream_iterator<std::string>(words), {});
    for (const char* name : {"", " ", "daub 4", "daub4 ", " daub4", "daub4\n"}) malformed.emplace_back(name);
    malformed.emplace_back(10000, 'd');
    for (const std::string& name : malformed) {
        EXPECT_EQ(complaint(name), "invalid filter wavelet string (1)") << name.substr(0, 20);
    }
}

TEST_F(Names, ReportTheFamilysOwnComplaint) {
    const std::string manyDigits(400, '9');
    const std::string manyZeros(400, '0');
    const std::pair<std::string, std::string> refused[] = {
        {"daub22", "filter unimplemented (1)"},
        {"daub3", "must be even integer (1)"},
        {"daub0", "must be positive integer (1)"},
        {"daub" + manyZeros, "must be positive integer (1)"},
        {"daub18446744073709551620", "filter unimplemented (1)"},  // 2^64 + 4
        {"daub4294967300", "filter unimplemented (1)"},            // 2^32 + 4
        {"daub" + manyDigits + "8", "filter unimplemented (1)"},
        {"symm2", "filter unimplemented (1)"},
        {"symm" + manyDigits + "8", "filter unimplemented (1)"},
        {"coif8", "filter unimplemented (1)"},
        {"coif7", "must be even integer (1)"},
        {"coif" + manyDigits + "8", "filter unimplemented (1)"},
        {"bl7", "filter unimplemented (1)"},
        {"bl4294967295", "filter unimplemented (1)"},
        {"bl4294967296", "invalid level (1)"},
        {"bl" + manyDigits, "invalid level (1)"},
        {"bs12", "filter unimplemented (1)"},
        {"bs19", "filter unimplemented (1)"},
        {"bs41", "filter unimplemented (1)"},
        {"bs01", "must be positive integer (1)"},
        {"bs10", "must be positive integer (1)"},
        {"Bspline00", "must be positive integer (1)"},
    };
    for (const auto& [name, expected] : refused) EXPECT_EQ(complaint(name), expected) << name.substr(0, 30);
}

// A name that is refused leaves the wavelet selected before.
TEST_F(Names, KeepTheSelectionWhenRefused) {
    select("s8");
    const undula::Wavelet* before = undula::ActiveFilter.selected;
    for (const char* name : {"daub", "daub22", "bs12", "bl7", "haar2"}) select(name);
    EXPECT_EQ(undula::ActiveFilter.selected, before);
}

TEST_F(Names, ReportLackOfMemoryAboutTheCall) {
    for (const char* name : {"daub4", "symm8", "coif6", "bl2", "bs39", "haar"}) {
        host.failAllocation(1);
        EXPECT_EQ(complaint(name), "out of memory (0)") << name;
        EXPECT_TRUE(host.happened());
        host.clear();

        bool failed = true;
        for (long k = 1; failed; ++k) {
            const long before = liveAllocations();
            {
                const Value text(name);
                efihost::Call call(host);
                Anyval* result = nullptr;
                {
                    const FailingNew refused(k);
                    result = undula::selectWaveletString(call.context(), static_cast<aString*>(text.raw()));
                    failed = refused.happened();
                }
                const Value made = call.finish(result);
                if (failed) {
                    ASSERT_TRUE(made.isError()) << name;
                    EXPECT_EQ(made.message(), "out of memory");
                    EXPECT_EQ(made.argument(), 0);
                }
            }
            if (failed) {
                EXPECT_EQ(liveAllocations(), before) << name;
            }
        }
        EXPECT_EQ(complaint(name), "no error");
    }
}
