#include "timeint/equilibrium.h"

#include "core/format.h"
#include "core/stop.h"
#include "elements/element_phases.h"
#include "solver/linear_system.h"
#include "timeint/convergence.h"
#include "timeint/equilibrium_note.h"
#include "timeint/finite_results.h"
#include "timeint/progress.h"

#include <limits>
#include <string>

namespace zurt {

namespace {

constexpr std::int32_t kLastIteration = std::numeric_limits<std::int32_t>::max();

void FormSystem(Run& run) {
    for (std::int32_t NGE = 1; NGE <= run.control.header.NGET; ++NGE)
        FormElementGroup(run, run.groups[NGE]);
}

// The increments add up over the step and the solution is the start value plus their sum.
void UpdateBySum(Run& run) {
    const RealArray R = RightHandSide(run), T = StepSolution(run), DT = StepIncrement(run),
                    T0 = StepStart(run);
    const bool first = run.clock.ITER == 0;
    for (Word i = 1; i <= R.length; ++i) {
        DT(i) = first ? R(i) : DT(i) + R(i);
        T(i) = T0(i) + DT(i);
    }
}

// The first solve gives the solution itself, later ones its corrections.
void UpdateByCorrection(Run& run) {
    const RealArray R = RightHandSide(run), T = StepSolution(run), DT = StepIncrement(run),
                    T0 = StepStart(run);
    const bool first = run.clock.ITER == 0;
    for (Word i = 1; i <= R.length; ++i) {
        T(i) = first ? R(i) : T(i) + R(i);
        DT(i) = first ? T(i) - T0(i) : R(i);
    }
}

void UpdateSolution(Run& run) {
    const std::int32_t INTEB = run.control.header.INTEB;
    if (INTEB != 1)
        UpdateByCorrection(run);
    if (INTEB != 2)
        UpdateBySum(run);
}

void WriteIterationLimitToListing(Run& run, TextUnit& unit, double EPST) {
    Write(unit, "(//A)",
          Say(run, " DOSTIGNUT MAKSIMALAN BROJ ITERACIJA", " MAXIMUM NUMBER OF ITERATION ACHIEVED"));
    Write(unit, "(A,I5)", Say(run, "KORAK BROJ =", " STEP NO. ="), run.clock.KOR);
    Write(unit, "(A,I5)", Say(run, "BROJ ITERACIJA, ITER =", " NUMBER OF ITERATION, ITER ="), run.clock.ITER);
    if (run.job.Language == kSerbian) {
        Write(unit, "(A,A,1PE12.5)", "DOZV. GRESKA U ODNOSU NA ",
              "POCETNI PRIRASTAJ TEMP. U KORAKU (%), EPST =", EPST);
    } else {
        Write(unit, "(A,A)", " ALLOWED ERROR IN REGARD TO", " INITIAL INCREASE OF TEMPERATURE WITHIN STEP,");
        Write(unit, "(A,1PE12.5)", " (%) EPST =", EPST);
    }
    Write(unit, "(A,1PE12.5)", Say(run, "REFERENTNA VREDNOST, TREF =", " REF. VALUE, TREF ="),
          run.clock.ReferenceNorm);
    Write(unit, "(A,A,1PE12.5)", Say(run, "DOSTIGNUTA VREDNOST ", " ACHIEVED VELUE OF "),
          Say(run, "MODULA PRIRASTAJA TEMP., DTMOD =", "TEMPERATURE INCREASE MODULE, DTMOD ="),
          run.clock.IncrementNorm);
}

void WriteIterationLimitToMessages(Run& run, double EPST) {
    TextUnit& unit = run.units.messages;
    Write(unit, "(A/)", " MAXIMUM NUMBER OF ITERATION REACHED");
    Write(unit, "(A,1PE12.5)", " TIME=", run.clock.TIME);
    Write(unit, "(A,1PE12.5)", " TIME STEP=", run.clock.TimeStep);
    Write(unit, "(A,I5)", " STEP NO. =", run.clock.KOR);
    Write(unit, "(A,I5)", " NUMBER OF ITERATIONS, ITER =", run.clock.ITER);
    Write(unit, "(A,1PE12.5)", " CURRENT REFERENCE CONCENTRATION, CREFFERENCE=", run.clock.ReferenceNorm);
    Write(unit, "(A,A,1PE12.5)", " ALLOWED PERCENTAGE ERROR WITH RESPECT TO CREFFERENCE,",
          " ERRORPERCENT =", EPST);
    Write(unit, "(A,1PE12.5/)", " UNBALANCED RIGHT-HAND SIDE, UNBALANCE =", run.clock.IncrementNorm);
    Write(unit, "(A)", " Use smaller time step, or");
    Write(unit, "(A,A)", " Refine the mesh (particularly in regions of high gradients),", " or");
    Write(unit, "(A)", " Increase percentage error tolerance,ERRORPERCENT");
}

[[noreturn]] void StopWithoutEquilibrium(Run& run) {
    const double EPST = run.control.header.EPSTR * 100.0;
    TextUnit& unit = BeginMessage(run);
    WriteIterationLimitToListing(run, unit, EPST);
    if (run.control.header.NDS > 0)
        WriteIterationLimitToMessages(run, EPST);
    const std::int32_t NCZZ = run.outputs.NCZZ;
    if (NCZZ > 0) {
        Write(unit, "(A,I5,A)", Say(run, " POSTOJI ZAPISANO ZADNJIH NCZZ=", " THERE ARE LAST NCZZ="), NCZZ,
              Say(run, " KORAKA", "STEPS WRITTEN "));
        Write(unit, "(A)", Say(run, " MOGUCE JE RESTARTOVANJE PROGRAMA", " POSIBLE RESTART"));
    }
    NoteNoEquilibrium(run);
    StopRun(unit);
}

// A negative MAXIT does not end the iteration by count.
void StopAtLastIteration(const Run& run) {
    if (run.clock.ITER == kLastIteration)
        StopWithLibraryError("step " + std::to_string(run.clock.KOR) + ", iteration " +
                             std::to_string(run.clock.ITER) + ": no equilibrium, and MAXIT is negative");
}

} // namespace

void IterateStep(Run& run) {
    const HeaderFields& header = run.control.header;
    while (true) {
        run.clock.FactorFlag = 1;
        ShowProgress(run);
        StopIfInterrupted();
        ClearSystem(run);
        FormSystem(run);
        StopIfInterrupted();
        SolveSystem(run);
        RequireFiniteSolution(run);
        if (run.job.NonlinearFlag == 0)
            return;
        UpdateSolution(run);
        const RealArray reference = header.INTEB == 1 ? StepIncrement(run) : StepSolution(run);
        const bool converged = ConvergenceTest(run, RightHandSide(run), reference, StepSolution(run));
        RequireFinite(run, run.clock.IncrementNorm, "norm of the increment",
                      "its entries lie at the end of the range of numbers");
        StopAtLastIteration(run);
        if (converged)
            return;
        if (run.clock.ITER == 0 || run.clock.IncrementNorm < run.clock.LowestIncrement) {
            run.clock.LowestIncrement = run.clock.IncrementNorm;
            run.clock.LowestIteration = run.clock.ITER;
        }
        if (run.clock.ITER == header.MAXIT)
            StopWithoutEquilibrium(run);
        ++run.clock.ITER;
    }
}

} // namespace zurt
