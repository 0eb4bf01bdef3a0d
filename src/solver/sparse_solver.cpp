#include "solver/sparse_solver.h"

#include "core/format.h"
#include "core/stop.h"
#include "solver/sparse_assembler.h"
#include "solver/sparse_solver_instance.h"

#include <mpi.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string>
#include <sys/mman.h>

namespace zurt {

namespace {

static_assert(sizeof(MUMPS_INT) == sizeof(std::int32_t), "the solver's integers are 32-bit");

// Values of the field JOB.
constexpr MUMPS_INT kCreateInstance = -1;
constexpr MUMPS_INT kAnalyse = 1;
constexpr MUMPS_INT kFactorise = 2;
constexpr MUMPS_INT kSubstitute = 3;
constexpr MUMPS_INT kEndInstance = -2;

// The C interface takes this for "all processes of the layer", whatever number the layer itself gives them.
constexpr MUMPS_INT kWorldCommunicator = -987654;
constexpr MUMPS_INT kUnsymmetric = 0;
constexpr MUMPS_INT kHostWorks = 1;

constexpr std::int32_t kReport = 1; // of SolverReportFlag
constexpr std::int32_t kSilent = 0; // verbosity of the assembler

void ReportStage(TextUnit& console, std::int32_t SolverReportFlag, const char* text) {
    if (SolverReportFlag == kReport)
        Write(console, "(1X,A)", text);
}

void CallSolver(DMUMPS_STRUC_C& instance, MUMPS_INT job) {
    instance.job = job;
    dmumps_c(&instance);
}

template <class T> T* TakeArray(std::int32_t count) {
    // One element at least: an array without any is told from one that could not be had.
    void* array = std::malloc(static_cast<std::size_t>(std::max(count, 1)) * sizeof(T));
    if (array == nullptr)
        StopWithLibraryError("no memory left for the arrays of the sparse solver");
    return static_cast<T*>(array);
}

template <class T> void FreeArray(T*& array) {
    std::free(array);
    array = nullptr;
}

// A solver that is left alive would spoil the next one in the process.
void ReleaseSolver(DMUMPS_STRUC_C& instance) {
    CallSolver(instance, kEndInstance);
    FreeArray(instance.irn);
    FreeArray(instance.jcn);
    FreeArray(instance.a);
    FreeArray(instance.rhs);
    MPI_Finalize();
}

[[noreturn]] void StopAfterFailure(DMUMPS_STRUC_C& instance, TextUnit& console, TextUnit& listing,
                                   std::int32_t SolverReportFlag) {
    struct ReportLine {
        const char* onConsole;
        const char* onListing;
        MUMPS_INT value;
    };
    const auto INFO = [&](int number) { return instance.info[number - 1]; };
    const ReportLine lines[] = {
        {"INFO1:", "INFO1  :", INFO(1)},   {"INFO2:", "INFO2  :", INFO(2)},
        {"INFO3:", "INFO3  :", INFO(3)},   {"INFO7:", "INFO7  :", INFO(7)},
        {"INFO8:", "INFO8  :", INFO(8)},   {"INFO9:", "INFO9  :", INFO(9)},
        {"INFO15:", "INFO15 :", INFO(15)}, {"ICNTL14:", "ICNTL14:", instance.icntl[13]},
    };
    const Format line = "(1X,A,I12)";
    for (const ReportLine& report : lines)
        Write(console, line, report.onConsole, report.value);
    for (const ReportLine& report : lines)
        Write(listing, line, report.onListing, report.value);
    SolverStop(instance, console, SolverReportFlag);
    Write(BeginMessage(console), "(' ERROR IN SOLVER EXECUTION - STOPPING CALCULATION')");
    StopRun(console, 0);
}

// What no message of the program's own stands for: memory that is missing outside of the factorisation, mostly.
void RequireSuccess(DMUMPS_STRUC_C& instance, const char* phase) {
    const MUMPS_INT code = instance.info[0], detail = instance.info[1];
    if (code >= 0)
        return;
    ReleaseSolver(instance);
    StopWithLibraryError(std::string("the sparse solver failed in its ") + phase + " (INFO1 " +
                         std::to_string(code) + ", INFO2 " + std::to_string(detail) + ")");
}

// The BLAS takes its own memory at the first call, 128 MB of address space, and where there is none it waits for ever.
void RequireAddressSpace() {
    constexpr std::size_t kBytes = std::size_t{256} << 20;
    void* const space = mmap(nullptr, kBytes, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (space == MAP_FAILED)
        StopWithLibraryError("no address space left for the sparse solver and its BLAS");
    munmap(space, kBytes);
}

// The factors of an unsymmetric system have no inertia. But b . x = x . A x is above zero for every solution of a positive
// definite system; rounding leaves it within this of |b| |x|.
constexpr double kRoundedEnergy = 1e-10;

bool HasPositiveEnergy(ConstRealArray b, ConstRealArray x) {
    double energy = 0.0, squareOfB = 0.0, squareOfX = 0.0;
    for (Word i = 1; i <= x.length; ++i) {
        energy += b(i) * x(i);
        squareOfB += b(i) * b(i);
        squareOfX += x(i) * x(i);
    }
    return energy >= -kRoundedEnergy * std::sqrt(squareOfB) * std::sqrt(squareOfX);
}

} // namespace

void SolverStart(DMUMPS_STRUC_C& instance, std::int32_t N, std::int32_t NZ, TextUnit& console,
                 std::int32_t SolverReportFlag) {
    ReportStage(console, SolverReportFlag, "Initializing solver...");
    // Distributions build the solver with SCOTCH, which orders large systems in as many threads as there are processors
    // and then differently each time. One thread gives the same digits in every run.
    setenv("SCOTCH_PTHREAD_NUMBER", "1", 1);
    RequireAddressSpace();
    MPI_Init(nullptr, nullptr);
    instance.comm_fortran = kWorldCommunicator;
    instance.sym = kUnsymmetric;
    instance.par = kHostWorks;
    CallSolver(instance, kCreateInstance);
    if (instance.info[0] < 0) {
        MPI_Finalize();
        StopWithLibraryError("the sparse solver could not be started (INFO1 " +
                             std::to_string(instance.info[0]) + ")");
    }
    instance.n = N;
    instance.nz = NZ;
    instance.irn = TakeArray<MUMPS_INT>(NZ);
    instance.jcn = TakeArray<MUMPS_INT>(NZ);
    instance.a = TakeArray<double>(NZ);
    instance.rhs = TakeArray<double>(N);
}

void SetSolverControls(DMUMPS_STRUC_C& instance) {
    const auto ICNTL = [&](int number) -> MUMPS_INT& { return instance.icntl[number - 1]; };
    ICNTL(4) = 0;
    ICNTL(1) = -1;
    ICNTL(2) = -1;
    ICNTL(14) = 120;
    ICNTL(3) = -1;
}

void SolverFactor(DMUMPS_STRUC_C& instance, TextUnit& console, TextUnit& listing,
                  std::int32_t SolverReportFlag) {
    SetSolverControls(instance);
    ReportStage(console, SolverReportFlag, "Starting analysis...");
    CallSolver(instance, kAnalyse);
    ReportStage(console, SolverReportFlag, "Starting factorization...");
    CallSolver(instance, kFactorise);
    if (instance.info[0] != 0)
        StopAfterFailure(instance, console, listing, SolverReportFlag);
}

void SolverBackSolve(DMUMPS_STRUC_C& instance, RealArray R) {
    const RealArray RHS{instance.rhs, instance.n};
    Copy<double>(R, RHS);
    CallSolver(instance, kSubstitute);
    RequireSuccess(instance, "substitution");
    if (!HasPositiveEnergy(R, RHS)) {
        ReleaseSolver(instance);
        StopWithLibraryError(
            "the system matrix is not positive definite (the energy of its solution is negative): look for "
            "negative coefficients, areas or densities, and for a steady problem without a held node");
    }
    Copy<double>(RHS, Section(R, 1, instance.n));
}

void SolverStop(DMUMPS_STRUC_C& instance, TextUnit& console, std::int32_t SolverReportFlag) {
    ReportStage(console, SolverReportFlag, "Killing solver...");
    ReleaseSolver(instance);
}

void SolveSparseSystem(SparseTree& tree, RealArray R, std::int32_t JEDN, std::int32_t /*reserved*/,
                       TextUnit& console, TextUnit& listing, std::int32_t SolverReportFlag) {
    std::int32_t NZ = 0;
    SparseNonzeroCount(tree, NZ);
    DMUMPS_STRUC_C instance{};
    SolverStart(instance, JEDN, NZ, console, SolverReportFlag);
    SparseExtract(tree, NZ, {instance.irn, NZ}, {instance.jcn, NZ}, {instance.a, NZ}, kSilent);
    SparseKill(tree, kSilent);
    if (JEDN < 1 || NZ < 1) {
        Write(BeginMessage(console), "(' Error in solver calling!')");
        SetSolverControls(instance); // else it speaks at its end
        ReleaseSolver(instance);
        StopRun(console, 0);
    }
    SolverFactor(instance, console, listing, SolverReportFlag);
    SolverBackSolve(instance, R);
    SolverStop(instance, console, SolverReportFlag);
}

} // namespace zurt
