// One thread against several, in turns and by the clock on the wall: forming of bricks, factor of the skyline store, conjugate
// gradients.
//
// Arguments: elements a side, threads. Reported are medians, and the least times besides: where others use the machine too,
// these are of moments in which all threads had a processor.
#include "../tests/elements/form_model.h"
#include "../tests/solver/skyline_reference.h"
#include "solver/conjugate_gradients.h"
#include "solver/skyline_factor.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>

namespace zurt {
namespace {

using namespace testmodel;

double Seconds() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

/// Times work(workers) with one thread and with as many as asked for, in turns; prepare() goes ahead of each, unmeasured.
template <class Prepare, class Work>
void TimeInTurns(benchmark::State& state, const Prepare& prepare, const Work& work) {
    Workers sides[2];
    StartWorkers(sides[1], static_cast<int>(state.range(1)));
    std::vector<double> times[2];
    for (Workers& workers : sides)
        work(workers); // pages touched, threads there
    for (auto _ : state)
        for (int side = 0; side < 2; ++side) {
            prepare();
            const double start = Seconds();
            work(sides[side]);
            times[side].push_back(Seconds() - start);
        }
    const char* names[2][2] = {{"one_median_s", "one_least_s"}, {"several_median_s", "several_least_s"}};
    for (int side = 0; side < 2; ++side) {
        std::sort(times[side].begin(), times[side].end());
        state.counters[names[side][0]] = times[side][times[side].size() / 2];
        state.counters[names[side][1]] = times[side].front();
    }
    state.counters["median_ratio"] = times[0][times[0].size() / 2] / times[1][times[1].size() / 2];
    state.counters["least_ratio"] = times[0].front() / times[1].front();
}

void ThreadsForm(benchmark::State& state) {
    const int side = static_cast<int>(state.range(0));
    Run run;
    Problem problem = TransientCurveProblem();
    problem.size = kWorkingVectorSize;
    const auto place = [](int i, int j, int k) {
        return Point{i + 0.1 * ((j * 7 + k * 3) % 5), j + 0.1 * ((i * 3 + k) % 4),
                     k + 0.1 * ((i + j * 5) % 3)};
    };
    BuildModel(run, BlockOfBricks(side, side, side, place), problem);
    const RealArray T = StepSolution(run);
    for (Word i = 1; i <= T.length; ++i)
        T(i) = 0.2 + 0.6 * static_cast<double>(i) / static_cast<double>(T.length);
    TimeInTurns(
        state, [] {},
        [&](const Workers& workers) {
            run.workers = workers;
            FormElementGroup(run, run.groups[1]);
        });
    DestroyWorkingVector(run.A);
}

void ThreadsFactor(benchmark::State& state) {
    zurt_test::SkylineSystem system = zurt_test::MakeCube(static_cast<std::int32_t>(state.range(0)));
    std::mt19937 random(1);
    FillDominant(system, random);
    const std::vector<double> assembled = system.store;
    TimeInTurns(
        state, [&] { system.store = assembled; },
        [&](Workers& workers) {
            benchmark::DoNotOptimize(
                FactorSkyline(system.Store(), system.Pointers(), system.NN, WidestInstructionSet(), workers));
        });
}

// The pattern of a cube of bricks; every entry off the diagonal is -1, and the diagonal a little more than their sum.
struct CubeRows {
    RowOrder order;
    SymmetricRows A;
};

CubeRows MakeCubeRows(std::int32_t side) {
    CubeRows cube;
    const auto JEDN = static_cast<std::int32_t>((side + 1) * (side + 1) * (side + 1));
    const std::vector<std::int32_t> nodes = zurt_test::NodesOfCube(side);
    ElementEquations elements;
    for (std::size_t e = 0; e < nodes.size(); e += 8)
        AddElementEquations(elements, {nodes.data() + e, 8}, 8);
    cube.order = MakeRowOrder(elements, JEDN);
    RenumberEquations(elements, cube.order);
    MakePattern(cube.A, elements, JEDN);
    for (std::size_t i = 0; i < static_cast<std::size_t>(JEDN); ++i)
        for (Word k = cube.A.start[i]; k < cube.A.start[i + 1]; ++k)
            cube.A.value[static_cast<std::size_t>(k)] = k + 1 < cube.A.start[i + 1] ? -1.0 : 26.1;
    return cube;
}

void ThreadsGradients(benchmark::State& state) {
    const CubeRows cube = MakeCubeRows(static_cast<std::int32_t>(state.range(0)));
    std::vector<double> value = cube.A.value, right(static_cast<std::size_t>(cube.A.JEDN));
    SymmetricRows A = cube.A;
    GradientsWork work;
    const auto prepare = [&] {
        A.value = value;
        for (std::size_t i = 0; i < right.size(); ++i)
            right[i] = static_cast<double>(i % 7);
    };
    prepare();
    TimeInTurns(state, prepare, [&](Workers& workers) {
        benchmark::DoNotOptimize(SolveByGradients(workers, A, cube.order,
                                                  RealArray(right.data(), cube.A.JEDN), {1e-11, 1000}, work));
    });
}

BENCHMARK(ThreadsForm)->ArgsProduct({{10, 20, 30}, {2}})->UseRealTime();
BENCHMARK(ThreadsFactor)->ArgsProduct({{10, 15, 20, 30}, {2}})->UseRealTime();
BENCHMARK(ThreadsGradients)->ArgsProduct({{10, 20, 30, 60}, {2}})->UseRealTime();

} // namespace
} // namespace zurt
