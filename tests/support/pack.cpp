#include "support/pack.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <random>

FreshPack::FreshPack()
    : file_(std::filesystem::temp_directory_path() /
            ("undula_copy_" + std::to_string(std::random_device()()) + ".so")) {
    std::filesystem::copy_file(UNDULA_PACK_PATH, file_);
    pack_.emplace(file_);
}

FreshPack::~FreshPack() {
    pack_.reset();
    std::error_code stillLoaded;  // on Windows
    std::filesystem::remove(file_, stillLoaded);
}

Value unrealColumn() {
    return Value::column(Numbers{1, 2, 3, 4}, Numbers{0, 0, 0, 1});
}

Value nestedColumn() {
    return Value::table({1, column({1, 2}), 3, 4});
}

Numbers noise(std::size_t count, unsigned seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> number(-1.0, 1.0);
    Numbers values(count);
    for (double& value : values) value = number(random);
    return values;
}

Value strided(int rows, int cols, const Numbers& values) {
    constexpr int gap = 3;
    constexpr int line = 8;
    struct Memory {
        Numbers re;
        Numbers im;
    };
    const int stride = rows + gap;
    const auto size = static_cast<std::size_t>(stride * cols + line);
    auto memory = std::make_shared<Memory>(Memory{Numbers(size, NaN), Numbers(size, 7.0)});
    const auto behindLine = [](Numbers& numbers) {
        const auto place = reinterpret_cast<std::uintptr_t>(numbers.data()) / sizeof(double) % line;
        return numbers.data() + (line - place) % line + 1;
    };
    double* const re = behindLine(memory->re);
    double* const im = behindLine(memory->im);
    for (int c = 0; c < cols; ++c) {
        std::copy_n(values.begin() + c * rows, rows, re + c * stride);
        std::fill_n(im + c * stride, rows, -0.0);
    }
    return Value::borrow(rows, cols, stride, re, im, memory);
}

namespace {

bool sameBits(const Numbers& a, const Numbers& b) {
    return a.size() == b.size() &&
           (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof(double)) == 0);
}

}  // namespace

Numbers flat(const Value& value) {
    if (!value) return {};
    Numbers numbers = {static_cast<double>(value.tag())};
    const auto add = [&](const auto& more) { numbers.insert(numbers.end(), more.begin(), more.end()); };
    if (value.isError()) add(value.message() + static_cast<char>(value.argument()));
    if (value.isString()) add(value.text());
    if (value.isScalar()) add(Numbers{value.real(), value.scalar().imag()});
    if (!value.isMatrix()) return numbers;
    add(std::array{value.rows(), value.cols()});
    add(value.reals());
    add(value.imaginaries());
    for (int cell = 0; value.anyNested() && cell < value.rows() * value.cols(); ++cell)
        add(flat(value.nested(cell % value.rows(), cell / value.rows())));
    return numbers;
}

bool same(const Value& a, const Value& b) {
    return sameBits(flat(a), flat(b));
}

void expectNear(const Numbers& actual, const Numbers& expected, double tolerance) {
    ASSERT_EQ(actual.size(), expected.size());
    for (std::size_t i = 0; i < actual.size(); ++i)
        EXPECT_NEAR(actual[i], expected[i], tolerance) << "at " << i;
}
