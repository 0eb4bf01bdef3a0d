// The diffusion curve of the last material while a fit, or a plain run of the equivalent medium, changes it.
//
// The curve's coefficients stand in the table of diffusion curves, where element code reads them; DBULK holds them as
// read. Units are those of the deck. Called by the homogenization and, for a plain run of the equivalent medium, by the
// driver.
#pragma once

#include "run/fit_state.h"
#include "run/run.h"

namespace zurt {

struct FittedCurve {
    RealTable table;           // of all diffusion curves
    std::int32_t material = 0; // NMATT
    Word points = 0;           // N, at least 1
    ConstRealArray DBULK;      // 1..N
};

/// The curve of material NMATT; DBULK is the section that a fit has taken for it, empty without one. Ends the run with a
/// library error when that material has no points.
FittedCurve FittedCurveOf(const Run& run);

inline double ConcentrationOf(const FittedCurve& curve, Word i) {
    return curve.table(curve.material, 2 * i - 1);
}
inline double& CoefficientOf(const FittedCurve& curve, Word i) {
    return curve.table(curve.material, 2 * i);
}

/// Sets fit.D1 and D2 to the curve's ends and lowers it by the porosity: its first value to P*D1, the last by the same
/// difference (D2 * 0.001 where that falls below 0). With factors on, which inside a fit they are not, each value is
/// also multiplied by 1.1 times the factor of the first set's first table at its concentration and the distance HEQ0.
void RescaleEquivalentCurve(const FittedCurve& curve, double POROSITY, const FibreModel& fibres,
                            FitState& fit);

/// The curve between the ends of the card, fit.card.D1D and D2D.
void RescaleCurveFromCard(const FittedCurve& curve, const FitState& fit);

/// The curve that begins at fit.DCTRY and keeps the span from D1 to D2; ends below 0 become a thousandth of D1, of D2,
/// which fit.clampedCurve remembers.
void ApplyTriedCurve(const FittedCurve& curve, FitState& fit);

/// All values as read.
void RestoreBulkCurve(const FittedCurve& curve);

/// First and last value take the fitted ends DCFIT1 and DCFIT2; those between stay.
void SetFittedEnds(const FittedCurve& curve, const FitState& fit);

} // namespace zurt
