// zurt-mpi: runs a deck on several processes, which mpiexec starts, with PETSc as the solver.
//
// The command line is zurt's up to the first argument with one minus and more than one letter behind it; that one and all
// behind it go to PETSc.
#include "core/ranks_mpi.h"
#include "job/command_line.h"
#include "job/driver.h"
#include "run/process.h"

#include <cstdio>
#include <cstring>
#include <new>
#include <optional>
#include <petscsys.h>
#include <vector>

namespace {

constexpr const char* kHelp =
    R"(zurt-mpi: zurt on several processes, its linear systems solved by PETSc

Usage: mpiexec -n N zurt-mpi [options] DECK [PETSc's options]

Options ahead of the deck are zurt's (zurt --help). From the first argument with
one minus and more than one letter on, all are PETSc's. Without any: conjugate
gradients, an incomplete Cholesky factor in each process, residual 1e-12. Others:

  -pc_type gamg                          algebraic multigrid
  -pc_type hypre                         BoomerAMG, another one
  -pc_type cholesky -pc_factor_mat_solver_type mumps    direct, MUMPS
  -ksp_rtol 1e-10  -ksp_monitor  -log_view

Files, console and statuses are zurt's, and the first process's alone.
docs/cluster.md tells more.
)";

// Where PETSc's arguments begin.
int FirstOfPetsc(int count, char** values) {
    for (int i = 1; i < count; ++i) {
        if (std::strcmp(values[i], "--") == 0) {
            ++i; // what follows is the deck
            continue;
        }
        if (values[i][0] == '-' && values[i][1] != '-' && std::strlen(values[i]) > 2)
            return i;
    }
    return count;
}

int Refuse(const char* fault) {
    std::fprintf(stderr, "zurt: error: %s; see zurt-mpi --help\n", fault);
    return zurt::kFailed;
}

// Options that say what zurt does by itself and PETSc's or mpiexec's say here.
int RefuseOptionsOfOneProcess(const zurt::RunOptions& options) {
    if (options.solver != zurt::SolverChoice::OfDeck)
        return Refuse("--solver is zurt's; PETSc's options choose, behind the deck (-ksp_type, -pc_type)");
    if (options.vtu || options.history || !options.prescribed.empty())
        return Refuse("--vtu, --history and --prescribed are zurt's: one process writes them");
    if (options.checkpoint > 0 || !options.restart.empty())
        return Refuse("--checkpoint and --restart are zurt's, of one process and its own solvers");
    if (options.threads != 1)
        return Refuse("--threads is zurt's; mpiexec -n N takes more processes");
    return zurt::kFinished;
}

int RunDeck(const zurt::JobSettings& settings, char* program, int count, char** values) {
    std::vector<char*> arguments{program};
    arguments.insert(arguments.end(), values, values + count);
    arguments.push_back(nullptr);
    int length = count + 1;
    char** first = arguments.data();
    PetscOptionsSetValue(nullptr, "-no_signal_handler", nullptr);
    if (PetscInitialize(&length, &first, nullptr, nullptr) != 0)
        return Refuse("PETSc does not take its options");
    const int status = zurt::JobDriver(settings, stdin, stdout);
    PetscFinalize();
    return status;
}

// The first process judges the command line for all: it has the deck.
int RunArguments(int count, char** values) {
    const int ours = FirstOfPetsc(count, values);
    int status = zurt::kFinished;
    std::optional<zurt::JobSettings> settings;
    if (ours == 1)
        status = Refuse("no deck is named ahead of PETSc's options");
    else if (std::strcmp(values[1], "--help") == 0 || std::strcmp(values[1], "-h") == 0)
        std::fputs(kHelp, stdout);
    else
        settings = zurt::ReadCommandLine(ours, values, status);
    if (settings)
        status = RefuseOptionsOfOneProcess(settings->options);
    bool runs = settings.has_value() && status == zurt::kFinished;
    zurt::TakeFromFirstRank(&runs, sizeof runs);
    if (!runs)
        return status;
    return RunDeck(*settings, values[0], count - ours, values + ours);
}

int RunMain(int count, char** values) {
    int status = 0;
    zurt::StartRanks();
    try {
        status = RunArguments(count, values);
    } catch (const std::bad_alloc&) {
        status = Refuse("no memory left");
    }
    std::fflush(nullptr);
    zurt::EndRanks();
    return status;
}

} // namespace

int main(int argc, char** argv) {
    zurt::PrepareProcess();
    return zurt::RunOnOwnStack(RunMain, argc, argv);
}
