// The program with a clock beside it: build/bench/zurt_phases runs decks like zurt itself and, when it ends, writes to
// phases.json how much processor time went into each phase, over the whole job and for each run of the time loop.
//
// Nothing in the program knows of it: the linker (--wrap, see CMakeLists.txt) leads calls of the functions below from
// other files through here. Times exclude one another, but for "total" and "run".
#include "elements/element_phases.h"
#include "homogenization/mass_monitor.h"
#include "job/read_problem.h"
#include "results/listing.h"
#include "results/unv_results.h"
#include "solver/skyline_layout.h"
#include "solver/skyline_solve.h"
#include "solver/sparse_solver.h"
#include "solver/sparse_solver_instance.h"
#include "timeint/step.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <vector>

namespace zurt {

namespace {

// Opening takes the deck into memory, numbering is the heights of columns; analysis, factor and substitution are the
// library's in the sparse solver, which keeps the rest of its time under its own name.
enum Phase {
    kOpening,
    kInput,
    kNumbering,
    kForming,
    kFluxes,
    kAnalysis,
    kFactor,
    kSubstitution,
    kSparse,
    kFlows,
    kResults,
    kPhases
};
constexpr const char* kNames[kPhases] = {"opening",       "input",    "numbering", "forming",
                                         "fluxes",        "analysis", "factor",    "substitution",
                                         "sparse solver", "flows",    "results"};

/// Seconds by phase, and how many systems were solved.
struct Times {
    std::array<double, kPhases> seconds{};
    double total = 0.0;
    int solves = 0;
};

struct Stopwatch {
    Times job;
    std::vector<Times> runs;
    double booked = 0.0; // of all phases
};
Stopwatch theClock;

double Now() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

/// The time that no phase has taken yet: what is booked between two readings drops out of their difference.
double Unbooked() {
    return Now() - theClock.booked;
}

void Book(Phase phase, double start) {
    const double seconds = Unbooked() - start;
    theClock.job.seconds[phase] += seconds;
    theClock.booked += seconds;
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

// A pass over the steps, from its making to its end.
class PassTimer {
public:
    PassTimer() : start(Now()), before(theClock.job) {}
    PassTimer(const PassTimer&) = delete;
    PassTimer& operator=(const PassTimer&) = delete;
    ~PassTimer() {
        Times own = theClock.job;
        for (std::size_t phase = 0; phase < kPhases; ++phase)
            own.seconds[phase] -= before.seconds[phase];
        own.solves -= before.solves;
        own.total = Now() - start;
        theClock.runs.push_back(own);
    }

private:
    double start;
    Times before;
};

} // namespace

// NOLINTBEGIN(readability-identifier-naming): the linker's names
#define ZURT_WRAP(name, mangled, parameters)                                                                 \
    void Real##name parameters __asm__("__real_" mangled);                                                   \
    void Wrap##name parameters __asm__("__wrap_" mangled);                                                   \
    void Wrap##name parameters

ZURT_WRAP(OpenDeck, "_ZN4zurt8OpenDeckERNS_4DeckERKNSt7__cxx1112basic_stringIcSt11char_traitsIcESaIcEEE",
          (Deck & deck, const std::string& name)) {
    const double start = Unbooked();
    RealOpenDeck(deck, name);
    Book(kOpening, start);
}

ZURT_WRAP(ReadProblem, "_ZN4zurt11ReadProblemERNS_3RunE", (Run & run)) {
    const double start = Unbooked();
    RealReadProblem(run);
    Book(kInput, start);
}

ZURT_WRAP(ComputeColumnHeights,
          "_ZN4zurt20ComputeColumnHeightsENS_9ArrayViewIiEENS0_IKiEENS_9TableViewIS2_EES1_llblRl",
          (IntArray MHT, ConstIntArray ID, ConstIntTable NEL, IntArray LM, Word NE, Word JEDN, bool finish,
           Word NDIM, Word& NWK)) {
    const double start = Unbooked();
    RealComputeColumnHeights(MHT, ID, NEL, LM, NE, JEDN, finish, NDIM, NWK);
    Book(kNumbering, start);
}

ZURT_WRAP(FormElementGroup, "_ZN4zurt16FormElementGroupERNS_3RunERKNS_12ElementGroupE",
          (Run & run, const ElementGroup& group)) {
    const double start = Unbooked();
    RealFormElementGroup(run, group);
    Book(kForming, start);
}

ZURT_WRAP(AddGroupResults, "_ZN4zurt15AddGroupResultsERNS_3RunERKNS_12ElementGroupE",
          (Run & run, const ElementGroup& group)) {
    const double start = Unbooked();
    RealAddGroupResults(run, group);
    Book(kFluxes, start);
}

ZURT_WRAP(SkylineSolve, "_ZN4zurt12SkylineSolveENS_9ArrayViewIdEES1_NS0_IKiEEiiiRNS_8TextUnitERNS_7WorkersE",
          (RealArray A, RealArray V, ConstIntArray MAXA, std::int32_t NN, std::int32_t NWK, std::int32_t mode,
           TextUnit& unit, Workers& workers)) {
    const double start = Unbooked();
    RealSkylineSolve(A, V, MAXA, NN, NWK, mode, unit, workers);
    Book(mode == kSubstituteMode ? kSubstitution : kFactor, start);
    theClock.job.solves += mode == kSubstituteMode;
}

ZURT_WRAP(SolveSparseSystem,
          "_ZN4zurt17SolveSparseSystemERNS_10SparseTreeENS_9ArrayViewIdEEiiRNS_8TextUnitES5_i",
          (SparseTree & tree, RealArray R, std::int32_t JEDN, std::int32_t reserved, TextUnit& console,
           TextUnit& listing, std::int32_t flag)) {
    const double start = Unbooked();
    RealSolveSparseSystem(tree, R, JEDN, reserved, console, listing, flag);
    Book(kSparse, start);
    ++theClock.job.solves;
}

ZURT_WRAP(CallOfLibrary, "dmumps_c", (DMUMPS_STRUC_C * instance)) {
    const double start = Unbooked();
    const MUMPS_INT job = instance->job;
    RealCallOfLibrary(instance);
    if (job >= 1 && job <= 3)
        Book(job == 1 ? kAnalysis : job == 2 ? kFactor : kSubstitution, start);
}

ZURT_WRAP(RecordFlow, "_ZN4zurt10RecordFlowERNS_3RunE", (Run & run)) {
    const double start = Unbooked();
    RealRecordFlow(run);
    Book(kFlows, start);
}

ZURT_WRAP(PrintNodalResults, "_ZN4zurt17PrintNodalResultsERNS_3RunE", (Run & run)) {
    const double start = Unbooked();
    RealPrintNodalResults(run);
    Book(kResults, start);
}

ZURT_WRAP(WriteUnvResults, "_ZN4zurt15WriteUnvResultsERNS_3RunE", (Run & run)) {
    const double start = Unbooked();
    RealWriteUnvResults(run);
    Book(kResults, start);
}

ZURT_WRAP(RecordedPass, "_ZN4zurt12RecordedPassERNS_3RunERKNS_4PassE", (Run & run, const Pass& pass)) {
    const PassTimer timer;
    RealRecordedPass(run, pass);
}

ZURT_WRAP(SolutionPass, "_ZN4zurt12SolutionPassERNS_3RunEi", (Run & run, std::int32_t steps)) {
    const PassTimer timer;
    RealSolutionPass(run, steps);
}
// NOLINTEND(readability-identifier-naming)

} // namespace zurt
