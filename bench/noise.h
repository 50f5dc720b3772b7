// The data that whole calls are timed with.
#pragma once

#include <random>
#include <vector>

#include "efihost/host.h"

inline efihost::Value noise(int rows, int cols) {
    std::mt19937 random(1);
    std::normal_distribution<double> value;
    std::vector<double> numbers(static_cast<std::size_t>(rows) * static_cast<std::size_t>(cols));
    for (double& number : numbers) number = value(random);
    return efihost::Value::matrix(rows, cols, numbers);
}
