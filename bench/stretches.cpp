// How long a call goes on before it asks whether to stop: the longest stretch of each transform, from its
// beginning to its end, for 2^22 samples and an image of 4096 x 4096.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "efihost/host.h"

using efihost::Value;

namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::duration<double, std::milli>;

Value noise(int rows, int cols) {
    std::mt19937 random(1);
    std::normal_distribution<double> value;
    std::vector<double> numbers(static_cast<std::size_t>(rows) * static_cast<std::size_t>(cols));
    for (double& number : numbers) number = value(random);
    return Value::matrix(rows, cols, numbers);
}

struct Stretches {
    int polls = 0;
    Clock::duration longest{};
    Clock::time_point last = Clock::now();

    void end() {
        const auto now = Clock::now();
        longest = std::max(longest, now - last);
        last = now;
    }
};

void show(efihost::Host& host, const efihost::Function& function, const std::vector<Value>& arguments,
          const char* data) {
    Stretches stretches;
    host.setInterrupt([&] {
        stretches.end();
        ++stretches.polls;
        return false;
    });
    const auto begun = Clock::now();
    host.call(function, arguments);
    stretches.end();
    const Milliseconds whole = Clock::now() - begun;
    std::printf("| %s, %s | %d | %.0f | %.0f |\n", std::string(function.name).c_str(), data, stretches.polls,
                whole.count(), Milliseconds(stretches.longest).count());
    host.setInterrupt([] { return false; });
}

}  // namespace

int main() {
    const efihost::Pack pack(UNDULA_PACK_PATH);
    efihost::Host host;
    constexpr int levels = 5;
    const Value orthonormal = host.call(pack, "symmlet", 8);
    const Value pair = host.call(pack, "Bspline", 2, 4);
    std::puts("| call | polls | whole, ms | longest stretch, ms |\n|---|---|---|---|");
    for (const bool isSignal : {true, false}) {
        const Value data = isSignal ? noise(1 << 22, 1) : noise(4096, 4096);
        const Value basis = host.call(pack, "create_level", levels, isSignal ? 1 : 2);
        const char* const text = isSignal ? "2^22" : "4096 x 4096";
        for (const char* ending : {"", "s", "i"}) {
            const Value& wavelet = *ending == 's' ? pair : orthonormal;
            for (const char* name : {"dwt", "idwt", "wpt"})
                show(host, pack.function(std::string(name) + ending), {data, levels, wavelet}, text);
            show(host, pack.function(std::string("iwpt") + ending), {data, basis, wavelet}, text);
        }
        show(host, pack.function("cpt"), {data, levels}, text);
        show(host, pack.function("icpt"), {data, levels, basis}, text);
    }
}
