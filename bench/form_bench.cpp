// Elements per second of a forming visit: bricks of 8 nodes with 2 x 2 x 2 points, gather and assembly included.
#include "../tests/elements/form_model.h"

#include <benchmark/benchmark.h>

namespace zurt {
namespace {

using namespace testmodel;

constexpr int kSide = 20;

// A distorted block, so that no product is trivial.
Mesh Block() {
    return BlockOfBricks(kSide, kSide, kSide, [](int i, int j, int k) {
        return Point{i + 0.1 * ((j * 7 + k * 3) % 5), j + 0.1 * ((i * 3 + k) % 4),
                     k + 0.1 * ((i + j * 5) % 3)};
    });
}

void FormBlock(benchmark::State& state, Problem problem) {
    Run run;
    problem.size = kWorkingVectorSize;
    BuildModel(run, Block(), problem);
    const RealArray T = StepSolution(run);
    for (Word i = 1; i <= T.length; ++i)
        T(i) = 0.2 + 0.6 * static_cast<double>(i) / static_cast<double>(T.length);
    for (auto _ : state)
        FormElementGroup(run, run.groups[1]);
    state.counters["elements"] = benchmark::Counter(
        static_cast<double>(state.iterations()) * run.groups[1].NET, benchmark::Counter::kIsRate);
    DestroyWorkingVector(run.A);
}

void SteadyConstant(benchmark::State& state) {
    FormBlock(state, {});
}
BENCHMARK(SteadyConstant);

void TransientConstant(benchmark::State& state) {
    Problem problem;
    problem.NSTAC = 1;
    problem.NonlinearFlag = 1;
    FormBlock(state, problem);
}
BENCHMARK(TransientConstant);

void TransientDiffusionCurve(benchmark::State& state) {
    FormBlock(state, TransientCurveProblem());
}
BENCHMARK(TransientDiffusionCurve);

} // namespace
} // namespace zurt
