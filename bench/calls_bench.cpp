// Whole calls, as a host makes them: through the table, from values to values.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include "efihost/host.h"
#include "noise.h"

using efihost::Value;

namespace {

const efihost::Pack& pack() {
    static const efihost::Pack loaded(UNDULA_PACK_PATH);
    return loaded;
}

void transform(benchmark::State& state, const std::string& function, int rows, int cols, int levels) {
    efihost::Host host;
    const std::vector<Value> arguments = {noise(rows, cols), levels, host.call(pack(), "daublet", 8)};
    const efihost::Function& entry = pack().function(function);
    for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(host.call(entry, arguments));
    state.SetItemsProcessed(state.iterations() * rows * cols);
}

// What a call costs besides its arithmetic, which is one halving of two samples.
void tinyCall(benchmark::State& state) {
    efihost::Host host;
    const std::vector<Value> arguments = {noise(2, 1), 1, host.call(pack(), "daublet", 2)};
    const efihost::Function& entry = pack().function("dwt");
    for ([[maybe_unused]] auto _ : state) benchmark::DoNotOptimize(host.call(entry, arguments));
}

// A user function is called for every coefficient of every level.
void bestBasis(benchmark::State& state) {
    efihost::Host host;
    constexpr int n = 1 << 14;
    constexpr int levels = 6;
    const Value table = host.call(pack(), "wpt", noise(n, 1), levels, host.call(pack(), "daublet", 8));
    const Value cost = Value::function([](double x) { return x * x; });
    for ([[maybe_unused]] auto _ : state)
        benchmark::DoNotOptimize(host.call(pack(), "best_basis", table, cost));
    state.SetItemsProcessed(state.iterations() * n * (levels + 1));
}

BENCHMARK_CAPTURE(transform, dwt_signal, "dwt", 1 << 20, 1, 5)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(transform, idwt_signal, "idwt", 1 << 20, 1, 5)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(transform, dwt_image, "dwt", 1024, 1024, 3)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(transform, idwt_image, "idwt", 1024, 1024, 3)->Unit(benchmark::kMillisecond);
BENCHMARK(tinyCall);
BENCHMARK(bestBasis)->Unit(benchmark::kMillisecond);

}  // namespace
