#include "homogenization/run_homogenization.h"

#include "core/format.h"
#include "homogenization/fit_notes.h"
#include "homogenization/fit_update.h"
#include "homogenization/mass_files.h"
#include "homogenization/mass_monitor.h"
#include "homogenization/recorded_pass.h"
#include "microscale/marked_nodes.h"

#include <algorithm>

namespace zurt {

namespace {

const char* const kRunWithFactors = "running FIB model - with prescribed SF";
const char* const kRunWithoutFactors = "running FIB model - without SF";

void Announce(Run& run, const char* text) {
    Write(run.units.console, "(/1X,A/)", text);
}

// --- within one direction -----------------------------------------------------------------------------------------

// The first run of the equivalent medium begins with a curve of its own.
void BeginEquivalentMedium(Run& run, const FittedCurve& curve) {
    FitState& fit = run.fit;
    if (fit.ISFOFF == 0) {
        Announce(run, "running EHM model - Calculation of HEQ...");
        if (fit.card.IDCC == 0)
            RescaleCurveFromCard(curve, fit);
    } else {
        Announce(run, "running EHM model - Calculation of D-C curve...");
        RescaleEquivalentCurve(curve, run.fibres.POROSITY, run.fibres, fit);
    }
}

// The curve has been found and HEQ is to follow: the next run is of the model with fibres, now with factors.
void BeginDistanceStage(Run& run) {
    FitState& fit = run.fit;
    fit.IPHASE = fit.ISFOFF = fit.IEHM = fit.ITERFIT = fit.IFITEND = 0;
    Write(run.units.console, "(/1X,A//1X,A/)", "Calculation of D-C curve finished!", kRunWithFactors);
    std::fill(run.mass.FLUXMICRO.begin(), run.mass.FLUXMICRO.end(), 0.0);
    std::fill(run.mass.FLUXEQUIV.begin(), run.mass.FLUXEQUIV.end(), 0.0);
    ReformEquationNumbers(run);
    fit.ERRFIT = 1.0;
    fit.SEENPOS = fit.SEENNEG = 0;
}

void WriteIteration(Run& run) {
    Write(run.units.console, "(I5,E15.6)", run.fit.ITERFIT - 1, run.fit.ERRFIT);
}

void UpdateParameter(Run& run, const FittedCurve& curve) {
    FitState& fit = run.fit;
    if (fit.ISFOFF == 0) {
        UpdateHeq(fit, 0.5 * run.control.header.DMOLECULE);
        WriteIteration(run);
        return;
    }
    UpdateCurveStart(fit, CoefficientOf(curve, 1));
    if (fit.IDCEND == 1)
        RestoreBulkCurve(curve);
    else
        ApplyTriedCurve(curve, fit);
    WriteIteration(run);
    if (fit.IDCEND != 1)
        return;
    if (fit.card.IHEQ == 1)
        BeginDistanceStage(run);
    else
        fit.IFITEND = 1;
}

void TakeMass(Run& run, std::int32_t steps) {
    FitState& fit = run.fit;
    if (fit.IPHASE == 0)
        fit.MASSFIB = MassOfRun(run, run.mass.FLUXMICRO, steps);
    else
        fit.MASSEHM = MassOfRun(run, run.mass.FLUXEQUIV, steps);
}

// --- one direction ------------------------------------------------------------------------------------------------

void RunSteps(Run& run, std::int32_t steps) {
    RestoreInitialConcentrations(run);
    Pass pass;
    pass.NDT = std::max(steps, 0);
    pass.writesResults = run.fit.IFINALRUN != 0;
    pass.GraphicsEnabled = pass.SolverReportFlag = run.fit.IFINALRUN;
    RecordedPass(run, pass);
}

void BeginDirection(Run& run, std::int32_t direction) {
    static const char* const names[4] = {"", "Homogenization for Difusion X", "Homogenization for Difusion Y",
                                         "Homogenization for Difusion Z"};
    FitState& fit = run.fit;
    fit.INDDEG = direction;
    fit.HEQ = fit.HEQDIR[direction];
    fit.ISFOFF = 1;
    fit.IPHASE = fit.IEHM = fit.ITERFIT = fit.IFITEND = fit.IDCEND = fit.SEENPOS = fit.SEENNEG = 0;
    fit.ERRFIT = 1.0;
    fit.clampedCurve = false;
    Announce(run, names[direction]);
    if (fit.card.IDCC == 0)
        fit.ISFOFF = 0;
}

void CloseDirection(Run& run, const FittedCurve& curve, bool last) {
    PrintFittedParameters(run);
    Announce(run, "HOMOGENIZATION FINISHED!");
    if (last) {
        run.fit.IFINALRUN = 1;
        RestoreBulkCurve(curve); // the final run scales these values by direction
    }
    RunSteps(run, run.control.counts.NDT);
}

void FitDirection(Run& run, const FittedCurve& curve, bool last) {
    FitState& fit = run.fit;
    const std::int32_t steps = std::min(fit.card.NFSTEP, run.control.counts.NDT);
    BeginFitRun(run, curve);
    while (fit.IFITEND == 0) {
        RunSteps(run, steps);
        TakeMass(run, steps);
        EndFitRun(run, curve);
        BeginFitRun(run, curve);
    }
    CloseDirection(run, curve, last);
}

// The curve that a fit begins with: as read, or between the ends of the card.
void TakeCurveEnds(FitState& fit, const FittedCurve& curve) {
    const bool own = fit.card.IDCC == 1;
    const double D1 = own ? CoefficientOf(curve, 1) : fit.card.D1D;
    const double D2 = own ? CoefficientOf(curve, curve.points) : fit.card.D2D;
    std::fill(std::begin(fit.D1DIR), std::end(fit.D1DIR), D1);
    std::fill(std::begin(fit.D2DIR), std::end(fit.D2DIR), D2);
}

} // namespace

void BeginFitRun(Run& run, const FittedCurve& curve) {
    FitState& fit = run.fit;
    if (fit.IPHASE == 0)
        Announce(run, fit.ISFOFF == 0 ? kRunWithFactors : kRunWithoutFactors);
    else
        ++fit.ITERFIT;
    if (fit.ITERFIT > fit.card.NFITMAX) {
        Announce(run, "Max number of iterations for Homogenization reached");
        NoteSearchWithoutResult(run);
        fit.IFITEND = 1;
        return;
    }
    if (fit.ITERFIT == 1)
        BeginEquivalentMedium(run, curve);
    else if (fit.ITERFIT > 1)
        UpdateParameter(run, curve);
}

void EndFitRun(Run& run, const FittedCurve& curve) {
    FitState& fit = run.fit;
    if (fit.IPHASE != 0)
        return;
    fit.IPHASE = fit.IEHM = 1;
    ReformEquationNumbers(run);
    Fill(StepIncrement(run), 0.0);
    Fill(StepStart(run), 0.0);
    ClearMatrix(run);
    if (fit.ISFOFF == 0 && fit.card.IDCC == 1)
        SetFittedEnds(curve, fit);
}

void RunHomogenization(Run& run) {
    FitState& fit = run.fit;
    const FittedCurve curve = FittedCurveOf(run);
    TakeCurveEnds(fit, curve);
    Announce(run, "HOMOGENIZATION PROCEDURE STARTED");
    std::int32_t begun = 0;
    for (std::int32_t direction = 1; direction <= 3; ++direction) {
        if (fit.activeDirection[direction] == 0)
            continue;
        if (++begun > 1)
            RestoreBulkCurve(curve);
        BeginDirection(run, direction);
        ReformEquationNumbers(run); // the model with fibres is the same for every direction
        FitDirection(run, curve, begun == fit.NACTDIR);
    }
}

} // namespace zurt
