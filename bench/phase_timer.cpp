// The program with a clock beside it: build/bench/zurt_phases runs decks like zurt itself and, when it ends, writes to
// phases.json how much processor time went into each phase, over the whole job and for each run of the time loop.
//
// Nothing in the program knows of it: the linker (--wrap, see CMakeLists.txt) leads calls of the functions below from
// other files through here. Times exclude one another, but for "total" and "run".
#include "elements/element_dispatch.h"
#include "homogenization/mass_monitor.h"
#include "job/read_problem.h"
#include "results/listing.h"
#include "results/unv_results.h"
#include "solver/skyline_solve.h"
#include "solver/sparse_solver.h"
#include "timeint/solution_pass.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <vector>

namespace zurt {

namespace {

enum Phase { kInput, kForming, kFluxes, kFactor, kSubstitution, kSparse, kFlows, kResults, kPhases };
constexpr const char* kNames[kPhases] = {"input",        "forming",       "fluxes", "factor",
                                         "substitution", "sparse solver", "flows",  "results"};

/// Seconds by phase, and how many systems were solved.
struct Times {
    std::array<double, kPhases> seconds{};
    double total = 0.0;
    int solves = 0;
};

struct Clock {
    Times job;
    std::vector<Times> runs;
};
Clock theClock;

double Now() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

void Book(Phase phase, double start) {
    theClock.job.seconds[phase] += Now() - start;
}

void WriteTimes(std::FILE* file, const Times& times) {
    std::fprintf(file, "{\"total\": %.6f, \"solves\": %d", times.total, times.solves);
    for (int phase = 0; phase < kPhases; ++phase)
        std::fprintf(file, ", \"%s\": %.6f", kNames[phase], times.seconds[static_cast<std::size_t>(phase)]);
    std::fprintf(file, "}");
}

void WriteReport() {
    theClock.job.total = Now();
    std::FILE* file = std::fopen("phases.json", "w");
    if (file == nullptr)
        return;
    std::fprintf(file, "{\"job\": ");
    WriteTimes(file, theClock.job);
    std::fprintf(file, ", \"runs\": [");
    for (std::size_t run = 0; run < theClock.runs.size(); ++run) {
        std::fprintf(file, run == 0 ? "\n" : ",\n");
        WriteTimes(file, theClock.runs[run]);
    }
    std::fprintf(file, "]}\n");
    std::fclose(file);
}

const int registered = std::atexit(WriteReport);

} // namespace

// NOLINTBEGIN(readability-identifier-naming): the linker's names
#define ZURT_WRAP(name, mangled, parameters)                                                                 \
    void Real##name parameters __asm__("__real_" mangled);                                                   \
    void Wrap##name parameters __asm__("__wrap_" mangled);                                                   \
    void Wrap##name parameters

ZURT_WRAP(ReadProblem, "_ZN4zurt11ReadProblemERNS_3RunE", (Run & run)) {
    const double start = Now();
    RealReadProblem(run);
    Book(kInput, start);
}

ZURT_WRAP(DispatchElementPhase, "_ZN4zurt20DispatchElementPhaseERNS_3RunERNS_12ElementGroupEii",
          (Run & run, ElementGroup& group, std::int32_t NETIP, std::int32_t phase)) {
    const double start = Now();
    RealDispatchElementPhase(run, group, NETIP, phase);
    if (phase == kFormPhase) // the reading is part of the input
        Book(run.control.state.ResultsPhaseFlag == 0 ? kForming : kFluxes, start);
}

ZURT_WRAP(SkylineSolve, "_ZN4zurt12SkylineSolveENS_9ArrayViewIdEES1_NS0_IKiEEiiiRNS_8TextUnitE",
          (RealArray A, RealArray V, ConstIntArray MAXA, std::int32_t NN, std::int32_t NWK, std::int32_t mode,
           TextUnit& unit)) {
    const double start = Now();
    RealSkylineSolve(A, V, MAXA, NN, NWK, mode, unit);
    Book(mode == kFactorMode ? kFactor : kSubstitution, start);
    theClock.job.solves += mode == kSubstituteMode;
}

ZURT_WRAP(SolveSparseSystem, "_ZN4zurt17SolveSparseSystemENS_9ArrayViewIdEEiiRNS_8TextUnitES3_i",
          (RealArray R, std::int32_t JEDN, std::int32_t reserved, TextUnit& console, TextUnit& listing,
           std::int32_t flag)) {
    const double start = Now();
    RealSolveSparseSystem(R, JEDN, reserved, console, listing, flag);
    Book(kSparse, start);
    ++theClock.job.solves;
}

ZURT_WRAP(RecordFlow, "_ZN4zurt10RecordFlowERNS_3RunE", (Run & run)) {
    const double start = Now();
    RealRecordFlow(run);
    Book(kFlows, start);
}

ZURT_WRAP(PrintNodalResults, "_ZN4zurt17PrintNodalResultsERNS_3RunE", (Run & run)) {
    const double start = Now();
    RealPrintNodalResults(run);
    Book(kResults, start);
}

ZURT_WRAP(WriteUnvResults, "_ZN4zurt15WriteUnvResultsERNS_3RunE", (Run & run)) {
    const double start = Now();
    RealWriteUnvResults(run);
    Book(kResults, start);
}

ZURT_WRAP(SolutionPass, "_ZN4zurt12SolutionPassERNS_3RunE", (Run & run)) {
    const double start = Now();
    const Times before = theClock.job;
    RealSolutionPass(run);
    Times own = theClock.job;
    for (std::size_t phase = 0; phase < kPhases; ++phase)
        own.seconds[phase] -= before.seconds[phase];
    own.solves -= before.solves;
    own.total = Now() - start;
    theClock.runs.push_back(own);
}
// NOLINTEND(readability-identifier-naming)

} // namespace zurt
