#include "homogenization/recorded_pass.h"

#include "geometry/radial_nodes.h"
#include "homogenization/direct_coefficient.h"
#include "homogenization/mass_files.h"
#include "homogenization/mass_monitor.h"
#include "run/files.h"
#include "timeint/checkpoint.h"
#include "timeint/progress.h"
#include "timeint/step.h"

namespace zurt {

bool RunsSeveralTimes(const Run& run) {
    return run.fit.card.NFIT == 1 || run.control.header.IDIRECTD == 1;
}

RealArray RoomForStartValues(Run& run) {
    if (!RunsSeveralTimes(run))
        return {};
    const std::int32_t NP = run.control.header.NP;
    run.mass.startValues.resize(static_cast<std::size_t>(NP));
    return {run.mass.startValues.data(), NP};
}

void KeepInitialConcentrations(Run& run) {
    const ConstIntArray ID = EquationNumbers(run);
    const ConstRealArray solution = StepSolution(run);
    run.mass.startValues.resize(static_cast<std::size_t>(ID.length));
    const RealArray start(run.mass.startValues.data(), ID.length);
    for (Word i = 1; i <= ID.length; ++i)
        if (ID(i) > 0)
            start(i) = solution(ID(i));
}

void RestoreInitialConcentrations(Run& run) {
    const ConstIntArray ID = EquationNumbers(run);
    const ConstRealArray start(run.mass.startValues.data(), ID.length);
    const RealArray solution = StepSolution(run);
    for (Word i = 1; i <= ID.length; ++i)
        if (ID(i) > 0)
            solution(ID(i)) = start(i);
    for (std::int32_t NGE = 1; NGE <= run.control.header.NGET; ++NGE)
        if (IsRadial(run.groups[NGE]) && run.groups[NGE].radial.substructured)
            SetSubstructureInitialValues(run, run.groups[NGE]);
    Fill(StepIncrement(run), 0.0);
    Fill(StepStart(run), 0.0);
    Fill(RightHandSide(run), 0.0);
}

void RecordedPass(Run& run, const Pass& pass) {
    const HeaderFields& header = run.control.header;
    const bool direct = header.IDIRECTD == 1 && pass.PassCounter == 1;
    const bool flowRows = header.NANOCH == 3 && run.fit.card.NFIT == 1;
    MassTables& mass = run.mass;
    if (NextPassHasEnded(run)) {
        const PassFlows& flows = FlowsOfPass(run);
        mass.FLUXMICRO = flows.micro;
        mass.FLUXEQUIV = flows.equivalent;
        return;
    }
    BeginPass(run, pass);
    mass.flowRows = 0;
    GoOnFromCheckpoint(run);
    BeginPassProgress(run);
    while (run.clock.KOR < pass.NDT) {
        SolveStep(run);
        RecordFlow(run);
        if (direct)
            RecordDirectStep(run);
        if (WriteStep(run) && flowRows)
            WriteFlowRow(run, ++mass.flowRows);
        FlushUnits(run);
        EndStepProgress(run);
        WriteCheckpointIfDue(run);
    }
    if (run.options.checkpoint > 0)
        FlowsOfPass(run) = {mass.FLUXMICRO, mass.FLUXEQUIV};
}

} // namespace zurt
