// Sparse assembly and the sparse solver on cubes of eight-node bricks.
//
// Argument: elements a side. Assembly is one whole pass: all element matrices, count, extraction, release. Solver is
// analysis, factorisation and substitution of the same system, with the processor time of each; its "entries" are those
// of the factors, its "operations" those of the elimination.
#include "solver/sparse_assembler.h"
#include "solver/sparse_solver.h"
#include "solver/sparse_solver_instance.h"
#include "solver/sparse_tree.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <ctime>
#include <vector>

namespace {

using zurt::Word;

zurt::SparseTree tree;

/// Conduction of a brick of sides 1: the difference of two nodes enters with their distance.
std::vector<double> BrickMatrix() {
    std::vector<double> S(64);
    for (int i = 0; i < 8; ++i)
        for (int j = 0; j < 8; ++j) {
            const int different = i ^ j;
            const int axes = (different & 1) + (different >> 1 & 1) + (different >> 2);
            const double byAxes[] = {4.1 / 12.0, 0.0, -1.0 / 12.0, -1.0 / 12.0};
            S[static_cast<std::size_t>(8 * i + j)] = axes == 1 ? -1e-3 : byAxes[axes];
        }
    return S;
}

void AddElements(std::int32_t side, const std::vector<double>& S) {
    const std::int32_t row = side + 1;
    std::int32_t LM[8];
    for (std::int32_t z = 0; z < side; ++z)
        for (std::int32_t y = 0; y < side; ++y)
            for (std::int32_t x = 0; x < side; ++x) {
                for (std::int32_t corner = 0; corner < 8; ++corner)
                    LM[corner] = 1 + x + (corner & 1) + row * (y + (corner >> 1 & 1)) +
                                 row * row * (z + (corner >> 2));
                zurt::SparseAddElement(tree, 8, {LM, 8}, {S.data(), 8, 8});
            }
}

void BM_Assembly(benchmark::State& state) {
    const std::vector<double> S = BrickMatrix();
    std::int32_t count = 0;
    for (auto _ : state) {
        zurt::SparseInit(tree, 0, 0);
        AddElements(static_cast<std::int32_t>(state.range(0)), S);
        zurt::SparseNonzeroCount(tree, count);
        const std::size_t size = static_cast<std::size_t>(count);
        std::vector<std::int32_t> IRN(size), JCN(size);
        std::vector<double> A(size);
        zurt::SparseExtract(tree, count, {IRN.data(), count}, {JCN.data(), count}, {A.data(), count}, 0);
        zurt::SparseKill(tree, 0);
        benchmark::DoNotOptimize(A.data());
    }
    state.counters["entries"] = count;
}

/// Seconds that the process has computed; the solver uses one thread.
double ProcessorTime() {
    timespec now;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + 1e-9 * static_cast<double>(now.tv_nsec);
}

double CallTimed(DMUMPS_STRUC_C& instance, MUMPS_INT job) {
    const double start = ProcessorTime();
    instance.job = job;
    dmumps_c(&instance);
    return ProcessorTime() - start;
}

void BM_Solver(benchmark::State& state) {
    const std::int32_t side = static_cast<std::int32_t>(state.range(0));
    const std::int32_t N = (side + 1) * (side + 1) * (side + 1);
    zurt::TextUnit closed;
    zurt::SparseInit(tree, 0, 0);
    AddElements(side, BrickMatrix());
    std::int32_t NZ = 0;
    zurt::SparseNonzeroCount(tree, NZ);
    DMUMPS_STRUC_C instance{};
    zurt::SolverStart(instance, N, NZ, closed, 0);
    zurt::SparseExtract(tree, NZ, {instance.irn, NZ}, {instance.jcn, NZ}, {instance.a, NZ}, 0);
    zurt::SparseKill(tree, 0);
    zurt::SetSolverControls(instance);
    double analysis = 0.0, factorisation = 0.0, substitution = 0.0;
    for (auto _ : state) {
        for (std::int32_t i = 0; i < N; ++i)
            instance.rhs[i] = 1.0;
        analysis += CallTimed(instance, 1);
        factorisation += CallTimed(instance, 2);
        substitution += CallTimed(instance, 3);
        if (instance.info[0] != 0)
            state.SkipWithError("the system was not solved");
    }
    state.counters["analysis_s"] = {analysis, benchmark::Counter::kAvgIterations};
    state.counters["factorisation_s"] = {factorisation, benchmark::Counter::kAvgIterations};
    state.counters["substitution_s"] = {substitution, benchmark::Counter::kAvgIterations};
    state.counters["operations"] = instance.rinfog[2]; // of the elimination
    state.counters["entries"] = 1e6 * -std::min(instance.infog[28], 0) + std::max(instance.infog[28], 0);
    zurt::SolverStop(instance, closed, 0);
}

/// The program's own solve of the assembled system, to be held against the bare calls of BM_Solver on the same entries:
/// what it costs beyond them is counting, extracting, copying, starting and ending. Processor time, assembly left out.
void BM_ProgramSolve(benchmark::State& state) {
    const std::int32_t side = static_cast<std::int32_t>(state.range(0));
    const std::vector<double> S = BrickMatrix();
    std::vector<double> R(static_cast<std::size_t>((side + 1) * (side + 1) * (side + 1)), 1.0);
    zurt::TextUnit closed;
    for (auto _ : state) {
        zurt::SparseInit(tree, 0, 0);
        AddElements(side, S);
        const double start = ProcessorTime();
        zurt::SolveSparseSystem(tree, {R.data(), static_cast<Word>(R.size())},
                                static_cast<std::int32_t>(R.size()), 0, closed, closed, 0);
        state.SetIterationTime(ProcessorTime() - start);
    }
}

#define ZURT_CUBES ->Arg(10)->Arg(20)->Arg(30)->Arg(40)->Unit(benchmark::kMillisecond)

BENCHMARK(BM_Assembly) ZURT_CUBES;
BENCHMARK(BM_Solver) ZURT_CUBES;
BENCHMARK(BM_ProgramSolve) ZURT_CUBES->UseManualTime();

} // namespace
