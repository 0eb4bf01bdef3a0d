#include "timeint/solution_pass.h"

#include "core/format.h"
#include "elements/element_dispatch.h"
#include "elements/nodal_averaging.h"
#include "elements/outlet_layer.h"
#include "homogenization/direct_coefficient.h"
#include "homogenization/mass_files.h"
#include "homogenization/mass_monitor.h"
#include "job/banner.h"
#include "job/files.h"
#include "model/prescribed_values.h"
#include "results/listing.h"
#include "results/torsion.h"
#include "results/unv_results.h"
#include "timeint/equilibrium.h"
#include "timeint/finite_results.h"
#include "timeint/step_file.h"

namespace zurt {

namespace {

void AdvanceTime(Run& run) {
    RunState& state = run.control.state;
    const HeaderFields& header = run.control.header;
    state.StartTime = state.TIME;
    state.TimeStep = RealSection(run.A, run.control.at.LDT, state.NDT)(state.KOR);
    state.TIME += state.TimeStep;
    RequireFiniteTime(run);
    state.GraphicsInterval = header.IGRAF * state.TimeStep;
    if (state.KOR == 1)
        state.GraphicsLimit = state.NDT / header.IGRAF;
}

void BeginStep(Run& run) {
    RunState& state = run.control.state;
    if (state.KOR > 1)
        state.OutletStart = state.OutletEnd;
    Fill(StepIncrement(run), 0.0);
    Copy<double>(StepSolution(run), StepStart(run));
    state.ITER = 0;
    state.ReferenceNorm = 0.0;
}

void FillNodalValues(Run& run) {
    const Control& control = run.control;
    const Word NZADC = control.counts.NZADC;
    const RealArray prescribedValues = RealSection(run.A, control.at.LZAD2, NZADC);
    const IntArray prescribedNodes = IntSection(run.A, control.at.LPRES, NZADC);
    ExpandToNodes(EquationNumbers(run), NodalValues(run), StepSolution(run), prescribedValues,
                  prescribedNodes, control.state.OutletEnd);
    // In a linear problem the solution is taken over only now: nodal values show the step before.
    if (control.state.NonlinearFlag != 1)
        Copy<double>(RightHandSide(run), StepSolution(run));
}

// False in runs of a fit but the last, and in the pass of a direct calculation that is not the one printed.
bool WritesResults(const Run& run) {
    if (run.fit.card.NFIT == 1 && run.fit.IFINALRUN == 0)
        return false;
    return run.control.header.IDIRECTD != 1 || run.control.state.PassCounter == run.control.header.IPASSPRINT;
}

// Nothing but the writers reads what stands here, and it is left out where they don't run: in a fit it is a fifth of all.
// ITOR 3 wants a line for every element that is visited.
void EvaluateNodalResults(Run& run) {
    const std::int32_t NDS = run.control.header.NDS;
    if ((NDS != 1 && NDS != 3) || (!WritesResults(run) && run.control.header.ITOR != 3))
        return;
    run.control.state.ResultsPhaseFlag = 1;
    for (std::int32_t NGE = 1; NGE <= run.control.header.NGET; ++NGE)
        DispatchElementPhase(run, run.groups[NGE], run.groups[NGE].NETIP, kFormPhase);
    AverageNodalResults(run);
    FormOutletLayers(run);
}

void WriteGraphicsStep(Run& run) {
    RunState& state = run.control.state;
    const std::int32_t IGRAF = run.control.header.IGRAF;
    if (IGRAF <= 0 || (state.GraphicsCounter != IGRAF && state.KOR != state.NDT))
        return;
    ++state.GraphicsWritten;
    if ((state.GraphicsWritten <= state.GraphicsLimit || state.KOR == state.NDT) &&
        state.GraphicsEnabled == 1)
        WriteUnvResults(run);
    state.GraphicsCounter = 0;
}

void WriteListingStep(Run& run) {
    RunState& state = run.control.state;
    const std::int32_t NPRINT = run.control.header.NPRINT;
    if (NPRINT < 0)
        return;
    const bool between = state.KOR > 1 && state.KOR < state.NDT;
    if (between && state.PrintCounter < NPRINT)
        return;
    if (between)
        state.PrintCounter = 0; // the first and the last step don't clear the count
    static const Format stepLine("(' *** END OF TIME STEP NUMBER',I10,' /',I7,' ***')");
    Write(run.units.console, stepLine, state.KOR, state.NDT);
    PrintNodalResults(run);
    if (run.control.header.NANOCH == 3 && run.fit.card.NFIT == 1)
        WriteFlowRow(run, ++state.ResultsWritten);
    if (run.control.header.ITOR == 1)
        PrintTorsion(run);
}

void RecordStep(Run& run) {
    const bool fit = run.fit.card.NFIT == 1, direct = run.control.header.IDIRECTD == 1;
    if (fit || direct)
        RecordFlow(run);
    if (direct && run.control.state.PassCounter == 1)
        RecordDirectStep(run);
}

void EndStep(Run& run) {
    RunState& state = run.control.state;
    ++state.PrintCounter;
    ++state.GraphicsCounter;
    FillNodalValues(run);
    EvaluateNodalResults(run);
    if (WritesResults(run))
        RequireFiniteNodalResults(run);
    SaveStep(state.KOR, state.TIME, StepSolution(run), run.control.header.NCZK, state.NCZZ,
             run.units.stepFile);
    RecordStep(run);
    if (WritesResults(run)) {
        WriteGraphicsStep(run);
        WriteListingStep(run);
    }
    FlushUnits(run);
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

void SolutionPass(Run& run) {
    RunState& state = run.control.state;
    MarkMatrixStart(run);
    ReleaseFrom(run.A, run.A.LMAXM);
    state.OutletStart = state.OutletStartOfRun;
    state.GraphicsWritten = 0;
    state.GraphicsCounter = 0;
    state.ResultsWritten = 0;
    state.KOR = 0;
    while (state.KOR < state.NDT) { // the last step may have the largest number there is
        ++state.KOR;
        if (run.control.header.NSTAC != 0)
            AdvanceTime(run);
        EvaluatePrescribedValues(run);
        BeginStep(run);
        IterateStep(run);
        EndStep(run);
    }
}

} // namespace zurt
