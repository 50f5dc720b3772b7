// Calls that must fail, as a table:
//
//     INSTANTIATE_TEST_SUITE_P(Transforms, Errors, testing::ValuesIn(cases({
//         {"dwt", {signal, -1, haar}, "invalid level", 2},
//     })), nameOfError);
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/pack.h"

struct ErrorCase {
    std::string function;
    std::vector<Value> arguments;
    std::string message;
    int index;
    int number = 0;  // of the case in its table
};

class Errors : public testing::TestWithParam<ErrorCase> {};

// The cases, numbered.
std::vector<ErrorCase> cases(std::vector<ErrorCase> table);

// Such as dwt_invalid_level_at_2_case_17.
std::string nameOfError(const testing::TestParamInfo<ErrorCase>& info);
