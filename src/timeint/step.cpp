#include "timeint/step.h"

#include "core/format.h"
#include "elements/element_phases.h"
#include "elements/forming/nodal_averaging.h"
#include "elements/forming/outlet_layer.h"
#include "model/prescribed_values.h"
#include "results/history.h"
#include "results/listing.h"
#include "results/torsion.h"
#include "results/unv_results.h"
#include "results/vtu_results.h"
#include "run/banner.h"
#include "run/files.h"
#include "timeint/checkpoint.h"
#include "timeint/equilibrium.h"
#include "timeint/finite_results.h"
#include "timeint/progress.h"
#include "timeint/step_file.h"

#include <cstdlib>

namespace zurt {

namespace {

void AdvanceTime(Run& run) {
    const HeaderFields& header = run.control.header;
    run.clock.StartTime = run.clock.TIME;
    run.clock.TimeStep = RealSection(run.A, run.control.at.LDT, run.pass.NDT)(run.clock.KOR);
    run.clock.TIME += run.clock.TimeStep;
    RequireFiniteTime(run);
    run.outputs.GraphicsInterval = header.IGRAF * run.clock.TimeStep;
    if (run.clock.KOR == 1)
        run.outputs.GraphicsLimit = run.pass.NDT / header.IGRAF;
}

void BeginStep(Run& run) {
    if (run.clock.KOR > 1)
        run.clock.OutletStart = run.control.outlet.OutletEnd;
    Fill(StepIncrement(run), 0.0);
    Copy<double>(StepSolution(run), StepStart(run));
    run.clock.ITER = 0;
    run.clock.ReferenceNorm = 0.0;
}

// What the elements take for held nodes without an entry (the second form of the gather).
void ShowValuesOfNodeCards(Run& run) {
    const ConstIntArray ID = EquationNumbers(run);
    const ConstRealArray onCard = NodeCardValues(run);
    const RealArray shown = NodalValues(run);
    const bool entries = run.control.counts.NZADC > 0;
    for (Word i = 1; i <= ID.length; ++i)
        if (ID(i) == 0 && (!entries || run.prescribedEntry[static_cast<std::size_t>(i - 1)] == 0))
            shown(i) = onCard(i);
}

void FillNodalValues(Run& run) {
    const Control& control = run.control;
    const Word NZADC = control.counts.NZADC;
    const RealArray prescribedValues = RealSection(run.A, control.at.LZAD2, NZADC);
    const IntArray prescribedNodes = IntSection(run.A, control.at.LPRES, NZADC);
    ExpandToNodes(EquationNumbers(run), NodalValues(run), StepSolution(run), prescribedValues,
                  prescribedNodes, control.outlet.OutletEnd);
    if (control.counts.IGATH == 1)
        ShowValuesOfNodeCards(run);
    // In a linear problem the solution is taken over only now: nodal values show the step before.
    if (run.job.NonlinearFlag != 1)
        Copy<double>(RightHandSide(run), StepSolution(run));
}

// Only the writers read these results, so passes that write nothing leave them out, which saves a fifth of the time of a
// fit. Under ITOR 3 the visit of every element writes a line, so there they are always evaluated.
void EvaluateNodalResults(Run& run) {
    const std::int32_t NDS = run.control.header.NDS;
    if ((NDS != 1 && NDS != 3) || (!run.pass.writesResults && run.control.header.ITOR != 3))
        return;
    for (std::int32_t NGE = 1; NGE <= run.control.header.NGET; ++NGE)
        AddGroupResults(run, run.groups[NGE]);
    AverageNodalResults(run);
    FormOutletLayers(run);
}

void WriteGraphicsStep(Run& run) {
    const std::int32_t IGRAF = run.control.header.IGRAF;
    if (IGRAF <= 0 || (run.outputs.GraphicsCounter != IGRAF && run.clock.KOR != run.pass.NDT))
        return;
    ++run.outputs.GraphicsWritten;
    if ((run.outputs.GraphicsWritten <= run.outputs.GraphicsLimit || run.clock.KOR == run.pass.NDT) &&
        run.pass.GraphicsEnabled == 1)
        WriteUnvResults(run);
    run.outputs.GraphicsCounter = 0;
}

// The steps that go to the graphics file, or would with IGRAF above 0; of a steady problem, whose steps all have one time, the
// last one alone.
bool IsViewerStep(const Run& run) {
    const Word interval = std::abs(Word{run.control.header.IGRAF});
    return run.clock.KOR == run.pass.NDT || (run.control.header.NSTAC != 0 && run.clock.KOR % interval == 0);
}

bool WriteListingStep(Run& run) {
    const std::int32_t NPRINT = run.control.header.NPRINT;
    if (NPRINT < 0)
        return false;
    const bool between = run.clock.KOR > 1 && run.clock.KOR < run.pass.NDT;
    if (between && run.outputs.PrintCounter < NPRINT)
        return false;
    if (between)
        run.outputs.PrintCounter = 0; // the first and the last step don't clear the count
    static const Format stepLine("(' *** END OF TIME STEP NUMBER',I10,' /',I7,' ***')");
    Write(run.units.console, stepLine, run.clock.KOR, run.pass.NDT);
    PrintNodalResults(run);
    if (run.control.header.ITOR == 1)
        PrintTorsion(run);
    return true;
}

// What the solution gives at the nodes, and the step into the step file.
void TakeResults(Run& run) {
    ++run.outputs.PrintCounter;
    ++run.outputs.GraphicsCounter;
    FillNodalValues(run);
    EvaluateNodalResults(run);
    if (run.pass.writesResults)
        RequireFiniteNodalResults(run);
    WriteHistoryRow(run);
    SaveStep(run.clock.KOR, run.clock.TIME, StepSolution(run), run.control.header.NCZK, run.outputs.NCZZ,
             run.units.stepFile);
}

} // namespace

void ExpandToNodes(ConstIntArray ID, RealArray nodalValues, ConstRealArray solution,
                   ConstRealArray prescribedValues, ConstIntArray prescribedNodes, double defaultValue) {
    for (Word i = 1; i <= ID.length; ++i)
        nodalValues(i) = ID(i) > 0 ? solution(ID(i)) : (ID(i) == 0 ? defaultValue : 0.0);
    for (Word k = prescribedNodes.length; k >= 1; --k) { // downward: the first match wins
        const Word i = prescribedNodes(k);
        if (i >= 1 && i <= ID.length && ID(i) <= 0)
            nodalValues(i) = prescribedValues(k);
    }
}

void BeginSolution(Run& run) {
    CheckProbes(run);
    run.clock.TIME = run.clock.StartTime = 0.0; // in a steady problem both stay 0
    run.clock.KOR = 0;
    run.outputs.NCZZ = 0;
    run.outputs.PrintCounter = 0;
}

void BeginPass(Run& run, const Pass& pass) {
    run.pass = pass;
    MarkMatrixStart();
    ReleaseFrom(run.A, run.A.LMAXM);
    run.clock.OutletStart = run.control.outlet.OutletStartOfRun;
    run.outputs.GraphicsWritten = 0;
    run.outputs.GraphicsCounter = 0;
    run.clock.TIME = 0.0;
    run.clock.KOR = 0;
    BeginHistory(run);
}

void SolveStep(Run& run) {
    ++run.clock.KOR;
    if (run.control.header.NSTAC != 0)
        AdvanceTime(run);
    EvaluatePrescribedValues(run);
    BeginStep(run);
    IterateStep(run);
    TakeResults(run);
}

bool WriteStep(Run& run) {
    if (!run.pass.writesResults)
        return false;
    if (run.options.vtu && IsViewerStep(run))
        WriteVtuStep(run);
    WriteGraphicsStep(run);
    return WriteListingStep(run);
}

void SolutionPass(Run& run, std::int32_t steps) {
    if (NextPassHasEnded(run))
        return;
    Pass pass;
    pass.NDT = steps;
    BeginPass(run, pass);
    GoOnFromCheckpoint(run);
    BeginPassProgress(run);
    while (run.clock.KOR < steps) { // not KOR <= steps: steps may be the largest integer
        SolveStep(run);
        WriteStep(run);
        FlushUnits(run);
        EndStepProgress(run);
        WriteCheckpointIfDue(run);
    }
}

} // namespace zurt
