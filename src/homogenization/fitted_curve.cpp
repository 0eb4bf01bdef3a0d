#include "homogenization/fitted_curve.h"

#include "core/stop.h"
#include "core/widened_constants.h"
#include "microscale/correction_lookup.h"
#include "microscale/direction_curves.h"
#include "microscale/merged_tables.h"
#include "model/material_tables.h"

#include <string>

namespace zurt {

FittedCurve FittedCurveOf(const Run& run) {
    FittedCurve curve;
    curve.table = DiffusionTable(run);
    curve.material = run.control.header.NMATT;
    curve.points = DiffusionPoints(run)(curve.material);
    if (curve.points < 1)
        StopWithLibraryError("deck " + run.deck.name + ": material " + std::to_string(curve.material) +
                             " (NMATT) has no diffusion curve, and that is the one which a fit or the "
                             "equivalent medium changes");
    if (run.fit.card.NFIT == 1)
        curve.DBULK = RealSection(run.A, run.control.at.LFIT, run.control.counts.MAXPMAT);
    return curve;
}

void RescaleEquivalentCurve(const FittedCurve& curve, double POROSITY, const FibreModel& fibres,
                            FitState& fit) {
    const Word N = curve.points;
    fit.D1 = CoefficientOf(curve, 1);
    fit.D2 = CoefficientOf(curve, N);
    const double low = POROSITY * fit.D1;
    double high = fit.D2 + low - fit.D1;
    if (high < 0.0)
        high = fit.D2 * 0.001;
    ScaleDiffusionCurve(curve.table, curve.material, curve.DBULK, N, fit.D1, fit.D2, low, high - low);
    if (fit.card.NSETS < 1 || fit.ISFOFF != 0)
        return;
    for (Word i = 1; i <= N; ++i) {
        const double f = LookupCorrectionFactor(EhmTableX(fibres), ConcentrationOf(curve, i), fit.HEQ0);
        CoefficientOf(curve, i) = CoefficientOf(curve, i) * f * kEquivalentRaise;
    }
}

void RescaleCurveFromCard(const FittedCurve& curve, const FitState& fit) {
    const double T1 = CoefficientOf(curve, 1), TN = CoefficientOf(curve, curve.points);
    ScaleDiffusionCurve(curve.table, curve.material, curve.DBULK, curve.points, T1, TN, fit.card.D1D,
                        fit.card.D2D - fit.card.D1D);
}

void ApplyTriedCurve(const FittedCurve& curve, FitState& fit) {
    double A = fit.DCTRY;
    double B = fit.DCTRY + fit.D2 - fit.D1;
    fit.clampedCurve = fit.clampedCurve || A < 0.0 || B < 0.0;
    if (A < 0.0)
        A = fit.D1 * 0.001;
    if (B < 0.0)
        B = fit.D2 * 0.001;
    ScaleDiffusionCurve(curve.table, curve.material, curve.DBULK, curve.points, fit.D1, fit.D2, A, B - A);
}

void RestoreBulkCurve(const FittedCurve& curve) {
    for (Word i = 1; i <= curve.points; ++i)
        CoefficientOf(curve, i) = curve.DBULK(i);
}

void SetFittedEnds(const FittedCurve& curve, const FitState& fit) {
    CoefficientOf(curve, 1) = fit.DCFIT1;
    CoefficientOf(curve, curve.points) = fit.DCFIT2;
}

} // namespace zurt
