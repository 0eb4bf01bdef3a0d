// Factor and solve of the skyline store on cubes of eight-node bricks, with the plain loops beside them.
//
// Argument: elements a side. Factor figures are operations a second, counted from the column heights; solve
// figures are bytes a second of the store, which is read twice.
#include "solver/skyline_factor.h"
#include "solver/skyline_solve.h"

#include "../tests/solver/skyline_reference.h"

#include <benchmark/benchmark.h>

extern "C" void dgemm_(const char*, const char*, const int*, const int*, const int*, const double*,
                       const double*, const int*, const double*, const int*, const double*, double*,
                       const int*);

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

// Floating-point operations of a factorisation of this layout.
double SkylineFactorOperations(zurt::ConstIntArray MAXA, zurt::Word NN) {
    double operations = 0.0;
    for (zurt::Word n = 1; n <= NN; ++n) {
        const zurt::Word height = MAXA(n + 1) - MAXA(n) - 1;
        for (zurt::Word i = 1; i < height; ++i) {
            const zurt::Word count = std::min<zurt::Word>(height - i, MAXA(n - i + 1) - MAXA(n - i) - 1);
            if (count > 0)
                operations += 2.0 * static_cast<double>(count) + 1.0;
        }
        if (height > 0)
            operations += 3.0 * static_cast<double>(height) + 1.0;
    }
    return operations;
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
        benchmark::Counter(SkylineFactorOperations(system.Pointers(), system.NN),
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

#define ZURT_CUBES                                                                                           \
    ->Arg(10)->Arg(15)->Arg(20)->Arg(25)->Arg(30)->Arg(35)->Arg(40)->Unit(benchmark::kMillisecond)

template <zurt::InstructionSet kSet> void TimeFactorWith(benchmark::State& state) {
    if (kSet > zurt::WidestInstructionSet()) {
        state.SkipWithError("not on this machine");
        return;
    }
    TimeFactor(state, [](RealArray store, zurt::ConstIntArray MAXA, Word NN) {
        zurt::Workers alone;
        return zurt::FactorSkyline(store, MAXA, NN, kSet, alone);
    });
}

/// The product of two full matrices whose order is the height of a cube's columns, by the BLAS that the sparse solver
/// works with: what the machine can do where sums may run in any order and contract multiply and add.
void TimeMatrixProduct(benchmark::State& state) {
    const std::int32_t side = static_cast<std::int32_t>(state.range(0)), n = (side + 1) * (side + 1);
    std::vector<double> A(static_cast<std::size_t>(n) * static_cast<std::size_t>(n), 0.5), B(A), C(A.size());
    const double one = 1.0, none = 0.0;
    for (auto _ : state) {
        dgemm_("N", "N", &n, &n, &n, &one, A.data(), &n, B.data(), &n, &none, C.data(), &n);
        benchmark::DoNotOptimize(C.data());
    }
    state.counters["flops"] = benchmark::Counter(
        2.0 * n * n * n, benchmark::Counter::kIsIterationInvariantRate, benchmark::Counter::kIs1000);
}

BENCHMARK_CAPTURE(TimeFactor, solver, static_cast<Factor>(zurt::FactorSkyline)) ZURT_CUBES;
BENCHMARK(TimeFactorWith<zurt::InstructionSet::Portable>)->Name("TimeFactor/portable") ZURT_CUBES;
BENCHMARK(TimeFactorWith<zurt::InstructionSet::Avx2>)->Name("TimeFactor/AVX2") ZURT_CUBES;
BENCHMARK(TimeFactorWith<zurt::InstructionSet::Avx512>)->Name("TimeFactor/AVX-512") ZURT_CUBES;
BENCHMARK(TimeMatrixProduct) ZURT_CUBES;
BENCHMARK_CAPTURE(TimeFactor, plain, zurt_test::ReferenceFactor) ZURT_CUBES;
BENCHMARK_CAPTURE(TimeSubstitution, solver, zurt::SubstituteSkyline) ZURT_CUBES;
BENCHMARK_CAPTURE(TimeSubstitution, plain, zurt_test::ReferenceSubstitute) ZURT_CUBES;

} // namespace
