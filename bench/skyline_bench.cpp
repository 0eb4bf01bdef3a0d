// Factor and solve of the skyline store on cubes of eight-node bricks, with the plain loops beside them.
//
// Argument: elements a side. Factor figures are operations a second, counted from the column heights; solve
// figures are bytes a second of the store, which is read twice.
#include "solver/skyline_factor.h"
#include "solver/skyline_solve.h"

#include "../tests/solver/skyline_reference.h"

#include <benchmark/benchmark.h>

namespace {

using zurt::RealArray;
using zurt::Word;

using Factor = Word (*)(RealArray, zurt::ConstIntArray, Word);
using Substitute = void (*)(zurt::ConstRealArray, RealArray, zurt::ConstIntArray, Word);

zurt_test::SkylineSystem LoadedCube(const benchmark::State& state) {
    zurt_test::SkylineSystem system = zurt_test::MakeCube(static_cast<std::int32_t>(state.range(0)));
    std::mt19937 random(1);
    FillDominant(system, random);
    return system;
}

void TimeFactor(benchmark::State& state, Factor factor) {
    zurt_test::SkylineSystem system = LoadedCube(state);
    const std::vector<double> assembled = system.store;
    for (auto _ : state) {
        state.PauseTiming();
        system.store = assembled;
        state.ResumeTiming();
        benchmark::DoNotOptimize(factor(system.Store(), system.Pointers(), system.NN));
    }
    state.counters["flops"] =
        benchmark::Counter(zurt::SkylineFactorOperations(system.Pointers(), system.NN),
                           benchmark::Counter::kIsIterationInvariantRate, benchmark::Counter::kIs1000);
}

void TimeSubstitution(benchmark::State& state, Substitute substitute) {
    zurt_test::SkylineSystem system = LoadedCube(state);
    zurt::FactorSkyline(system.Store(), system.Pointers(), system.NN);
    std::vector<double> V(static_cast<std::size_t>(system.NN), 1.0);
    for (auto _ : state) {
        std::fill(V.begin(), V.end(), 1.0);
        substitute(system.Store(), RealArray{V.data(), system.NN}, system.Pointers(), system.NN);
        benchmark::DoNotOptimize(V.data());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) * 16 *
                            static_cast<std::int64_t>(system.store.size()));
}

#define ZURT_CUBES ->Arg(15)->Arg(20)->Arg(25)->Arg(30)->Unit(benchmark::kMillisecond)

Word FactorPortable(RealArray store, zurt::ConstIntArray MAXA, Word NN) {
    return zurt::FactorSkyline(store, MAXA, NN, zurt::InstructionSet::Portable);
}

BENCHMARK_CAPTURE(TimeFactor, solver, static_cast<Factor>(zurt::FactorSkyline)) ZURT_CUBES;
BENCHMARK_CAPTURE(TimeFactor, portable, FactorPortable) ZURT_CUBES;
BENCHMARK_CAPTURE(TimeFactor, plain, zurt_test::ReferenceFactor) ZURT_CUBES;
BENCHMARK_CAPTURE(TimeSubstitution, solver, zurt::SubstituteSkyline) ZURT_CUBES;
BENCHMARK_CAPTURE(TimeSubstitution, plain, zurt_test::ReferenceSubstitute) ZURT_CUBES;

} // namespace
