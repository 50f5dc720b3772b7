// The arithmetic alone: one level of a filter bank, along a signal and over an image.
//
// The data is all zeros: a step runs on its own results again and again, which would make other numbers
// grow to infinity or fade into denormals. Arithmetic on zeros takes the usual time.
#include <benchmark/benchmark.h>

#include <vector>

#include "dwt/separable.h"
#include "dwt/steps.h"

using namespace undula;

namespace {

// A bank with filters of one length, with everything that any step needs.
class Bank : public FilterBank {
 public:
    explicit Bank(int taps)
        : filter_(static_cast<std::size_t>(2 * taps), 0.25),
          rows_(static_cast<std::size_t>(taps / 2), filter_.data()) {
        ha = hs = ga = gs = filter_.data();
        La = Lb = taps;
        oa = ob = os = og = 1 - taps / 2;
        BLlo = BLhi = BRlo = BRhi = rows_.data();
    }

 private:
    std::vector<double> filter_;
    std::vector<const double*> rows_;
};

void along(benchmark::State& state, Step* step) {
    const auto samples = static_cast<std::uint32_t>(state.range(0));
    const Bank bank(static_cast<int>(state.range(1)));
    std::vector<double> signal(samples);
    Workspace workspace;
    for ([[maybe_unused]] auto _ : state) {
        if (step(bank, {signal.data()}, samples, false, workspace)) {
            state.SkipWithError("the step refused");
            break;
        }
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * samples);
}

void across(benchmark::State& state, Step* step) {
    const auto side = static_cast<std::uint32_t>(state.range(0));
    const Bank bank(static_cast<int>(state.range(1)));
    std::vector<double> image(std::size_t{side} * side);
    const Block block = {image.data(), side, side, side};
    Workspace workspace;
    for ([[maybe_unused]] auto _ : state) {
        if (separableStep(step, bank, block, false, false, Poll(), workspace)) {
            state.SkipWithError("the step refused");
            break;
        }
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * side * side);
}

void signals(benchmark::internal::Benchmark* steps) {
    steps->ArgNames({"samples", "taps"})->ArgsProduct({{1 << 10, 1 << 20}, {4, 8, 20}});
}
void images(benchmark::internal::Benchmark* steps) {
    steps->ArgNames({"side", "taps"})->Args({1024, 8})->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(along, periodic_analysis, periodic_analysis_step)->Apply(signals);
BENCHMARK_CAPTURE(along, periodic_synthesis, periodic_synthesis_step)->Apply(signals);
BENCHMARK_CAPTURE(along, symmetric_analysis, symmetric_analysis_step)->Apply(signals);
BENCHMARK_CAPTURE(along, symmetric_synthesis, symmetric_synthesis_step)->Apply(signals);
BENCHMARK_CAPTURE(along, interval_analysis, interval_analysis_step)->Apply(signals);
BENCHMARK_CAPTURE(along, interval_synthesis, interval_synthesis_step)->Apply(signals);
BENCHMARK_CAPTURE(across, periodic_analysis, periodic_analysis_step)->Apply(images);
BENCHMARK_CAPTURE(across, periodic_synthesis, periodic_synthesis_step)->Apply(images);

}  // namespace
