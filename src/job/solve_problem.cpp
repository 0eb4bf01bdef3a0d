#include "job/solve_problem.h"

#include "core/stop.h"
#include "homogenization/direct_coefficient.h"
#include "homogenization/fitted_curve.h"
#include "homogenization/mass_files.h"
#include "homogenization/mass_monitor.h"
#include "homogenization/recorded_pass.h"
#include "homogenization/run_homogenization.h"
#include "job/model_notes.h"
#include "model/prescribed_values.h"
#include "run/partition.h"
#include "timeint/step.h"

#include <algorithm>
#include <vector>

namespace zurt {

namespace {

// A plain run of the equivalent medium begins with a curve that is lowered by porosity and factors.
void RescalePlainMedium(Run& run) {
    FittedCurve curve = FittedCurveOf(run);
    std::vector<double> asRead;
    for (Word i = 1; i <= curve.points; ++i)
        asRead.push_back(CoefficientOf(curve, i));
    curve.DBULK = ConstRealArray(asRead.data(), curve.points);
    RescaleEquivalentCurve(curve, run.fibres.POROSITY, run.fibres, run.fit);
}

void RunPlainProblem(Run& run) {
    WritePlainMassFile(run);
    if (run.fit.IEHM == 1)
        RescalePlainMedium(run);
    SolutionPass(run, run.control.counts.NDT);
}

void WriteNotesOfRepeatedRuns(const Run& run) {
    const ConstIntArray ID = EquationNumbers(run);
    const auto held = std::count(ID.data, ID.data + ID.length, 0);
    if (held > 0)
        WriteNote(
            (run.fit.card.NFIT == 1 ? "a fit frees all nodes in the runs of both models, the "
                                    : "the equivalent medium frees all nodes, the ") +
            std::to_string(held) +
            " that the deck holds as well: drive a fit or a direct calculation by reservoirs in the mesh");
    if (run.fit.card.NFIT == 1 && run.fit.NACTDIR == 0)
        WriteNote("a fit (NFIT 1) without a direction (INDFITX, INDFITY, INDFITZ) runs nothing");
}

void RunRepeatedProblem(Run& run) {
    WriteNotesOfRepeatedRuns(run);
    BeginMassTables(run);
    KeepInitialConcentrations(run);
    OpenMassFiles(run);
    if (run.control.header.IDIRECTD == 1)
        RunDirectCalculation(run);
    else
        RunHomogenization(run);
}

} // namespace

void SolveProblem(Run& run) {
    run.job.Solving = 1;
    BeginSolution(run);
    StartPrescribedValues(run);
    WriteModelNotes(run);
    if (RunsSeveralTimes(run))
        RunRepeatedProblem(run);
    else
        RunPlainProblem(run);
}

} // namespace zurt
