#include "support/error_cases.h"

#include <algorithm>
#include <cctype>
#include <ostream>

void PrintTo(const ErrorCase& error, std::ostream* out) {
    *out << error.function << ": " << error.message;
}

std::vector<ErrorCase> cases(std::vector<ErrorCase> table) {
    int number = 0;
    for (ErrorCase& each : table) each.number = ++number;
    return table;
}

std::string nameOfError(const testing::TestParamInfo<ErrorCase>& info) {
    const ErrorCase& error = info.param;
    std::string name = error.function + "_" + error.message + "_at_" + std::to_string(error.index) +
                       "_case_" + std::to_string(error.number);
    std::ranges::replace_if(
        name, [](unsigned char c) { return !std::isalnum(c); }, '_');
    return name;
}

TEST_P(Errors, IsReported) {
    TestHost host;
    {
        const Value result = host.callRaw(pack(), GetParam().function, GetParam().arguments);
        EXPECT_EQ(PackTest::complaintOf(result),
                  GetParam().message + " (" + std::to_string(GetParam().index) + ")");
    }
    EXPECT_EQ(host.leaks(), TestHost::Leaks{});
}
