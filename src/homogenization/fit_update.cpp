#include "homogenization/fit_update.h"

#include "core/widened_constants.h"
#include <cmath>

namespace zurt {

namespace {

constexpr double kFirstCurveStep = 5.0 * 0.01;
constexpr double kGrowth = 5.0;

bool BothSigns(const FitState& fit) {
    return fit.SEENPOS != 0 && fit.SEENNEG != 0;
}

bool WithinTolerance(const FitState& fit) {
    return BothSigns(fit) && std::fabs(fit.ERRFIT) <= fit.card.FITERR;
}

void TakeDifference(FitState& fit) {
    fit.DMASS = fit.MASSEHM - fit.MASSFIB;
    (fit.DMASS > 0.0 ? fit.ERRPOS : fit.ERRNEG) = fit.DMASS / fit.MASSFIB;
}

// The error of an iteration above the second, and the sign that has been seen. A difference of zero counts as negative.
void TakeError(FitState& fit) {
    fit.ERRFIT = fit.DMASS / fit.MASSREF;
    (fit.DMASS > 0.0 ? fit.SEENPOS : fit.SEENNEG) = 1;
}

// What both searches do at their second iteration. Returns true when this run counts as one of too much mass: with DMASS
// above 0, or when SEENPOS was set already.
bool TakeFirstDifference(FitState& fit) {
    fit.ERRFIT = 1.0;
    fit.MASSREF = fit.MASSFIB;
    const bool above = fit.DMASS > 0.0 || fit.SEENPOS != 0;
    (fit.DMASS > 0.0 ? fit.SEENPOS : fit.SEENNEG) = 1;
    return above;
}

// While one sign alone has been seen: the value becomes the bracket of that sign and the step grows.
void GrowStep(const FitState& fit, double value, double& above, double& below, double& step) {
    if (fit.ERRFIT > 0.0) {
        above = value;
        step = -kGrowth * std::fabs(step);
    } else {
        below = value;
        step = kGrowth * step;
    }
}

void LimitStep(double& step) {
    if (step <= -1.0)
        step = kLowestStep;
}

// --- HEQ ----------------------------------------------------------------------------------------------------------

double StepOfHeq(FitState& fit, double moleculeRadius) {
    LimitStep(fit.HEQSTEP);
    double value = fit.HEQ * (fit.HEQSTEP + 1.0);
    if (fit.card.IDIAM == 1 && !BothSigns(fit) && value < moleculeRadius)
        value = moleculeRadius * kAboveRadius + moleculeRadius;
    return value;
}

void BoundHeq(FitState& fit, double value) {
    fit.HEQTRY = fit.HEQ = value < kLowestHeq ? kLowestHeq : value;
}

void FirstUpdateOfHeq(FitState& fit, double moleculeRadius) {
    (TakeFirstDifference(fit) ? fit.HEQPOS : fit.HEQNEG) = fit.HEQ;
    fit.HEQSTEP = -fit.DMASS / fit.MASSFIB;
    BoundHeq(fit, BothSigns(fit) ? fit.HEQ : StepOfHeq(fit, moleculeRadius));
}

// --- D-C curve ----------------------------------------------------------------------------------------------------

void TakeBracketOfCurve(FitState& fit, bool above) {
    (above ? fit.DCPOS : fit.DCNEG) = fit.DCTRY;
    (above ? fit.DMASSPOS : fit.DMASSNEG) = fit.DMASS;
}

void StepOfCurve(FitState& fit) {
    LimitStep(fit.DCSTEP);
    fit.DCTRY = fit.DCTRY * (fit.DCSTEP + 1.0);
}

void FirstUpdateOfCurve(FitState& fit, double firstOfCurve) {
    fit.DCTRY = firstOfCurve;
    const bool above = TakeFirstDifference(fit);
    fit.DCSTEP = above ? -kFirstCurveStep : kFirstCurveStep;
    TakeBracketOfCurve(fit, above);
    if (!BothSigns(fit))
        StepOfCurve(fit);
}

void EndSearchOfCurve(FitState& fit) {
    fit.DCFIT1 = fit.DCTRY;
    fit.DCFIT2 = fit.DCTRY + fit.D2 - fit.D1;
    if (fit.DCFIT2 < 0.0)
        fit.DCFIT2 = fit.D2 * 0.001;
    fit.IDCEND = 1;
    fit.D1DIR[fit.INDDEG] = fit.DCTRY;
    fit.D2DIR[fit.INDDEG] = fit.DCFIT2;
}

} // namespace

void UpdateHeq(FitState& fit, double moleculeRadius) {
    TakeDifference(fit);
    if (fit.ITERFIT == 2)
        return FirstUpdateOfHeq(fit, moleculeRadius);
    TakeError(fit);
    if (WithinTolerance(fit)) {
        fit.IFITEND = 1;
        fit.HEQDIR[fit.INDDEG] = fit.HEQ = fit.HEQTRY;
        return;
    }
    if (BothSigns(fit)) {
        (fit.DMASS <= 0.0 ? fit.HEQNEG : fit.HEQPOS) = fit.HEQTRY;
        BoundHeq(fit, (fit.HEQNEG + fit.HEQPOS) * 0.5);
        return;
    }
    GrowStep(fit, fit.HEQTRY, fit.HEQPOS, fit.HEQNEG, fit.HEQSTEP);
    BoundHeq(fit, StepOfHeq(fit, moleculeRadius));
}

void UpdateCurveStart(FitState& fit, double firstOfCurve) {
    TakeDifference(fit);
    if (fit.ITERFIT == 2)
        return FirstUpdateOfCurve(fit, firstOfCurve);
    TakeError(fit);
    if (WithinTolerance(fit))
        return EndSearchOfCurve(fit);
    if (BothSigns(fit)) {
        TakeBracketOfCurve(fit, fit.DMASS > 0.0);
        fit.DCTRY = (fit.DCNEG + fit.DCPOS) * 0.5;
        return;
    }
    GrowStep(fit, fit.DCTRY, fit.DCPOS, fit.DCNEG, fit.DCSTEP);
    StepOfCurve(fit);
}

} // namespace zurt
