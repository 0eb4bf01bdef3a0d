// A plain read of the bytes that a substitution reads: what the memory allows, beside the figures of the skyline
// benchmark. Argument: elements a side of the same cubes.
#include "../tests/solver/skyline_reference.h"

#include <benchmark/benchmark.h>

namespace {

// Sixteen sums side by side, so that no addition waits for another and the reading is all that counts.
double SumOf(const std::vector<double>& values) {
    double sums[16] = {};
    for (std::size_t i = 0; i + 16 <= values.size(); i += 16)
        for (std::size_t k = 0; k < 16; ++k)
            sums[k] += values[i + k];
    double sum = 0.0;
    for (double part : sums)
        sum += part;
    return sum;
}

void ReadStore(benchmark::State& state) {
    zurt_test::SkylineSystem system = zurt_test::MakeCube(static_cast<std::int32_t>(state.range(0)));
    std::fill(system.store.begin(), system.store.end(), 1.0);
    for (auto _ : state)
        for (int pass = 0; pass < 2; ++pass) {
            benchmark::DoNotOptimize(SumOf(system.store));
            benchmark::ClobberMemory();
        }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * 16 *
                            static_cast<std::int64_t>(system.store.size()));
}
BENCHMARK(ReadStore)->Arg(10)->Arg(15)->Arg(20)->Arg(25)->Arg(30)->Unit(benchmark::kMillisecond);

} // namespace
