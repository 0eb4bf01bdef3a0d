// Diffusion curves rescaled between two ends: while a fit searches, and by direction in its final run.
//
// A fit saves the coefficients of one curve (DBULK) and writes rescaled ones into the curve's row of the table. In the
// final run each direction has a curve of its own, which is formed at the points that a look-up needs and stored nowhere.
// Coefficients and concentrations are in the deck's units. Called by the homogenization and by the element loops at
// every Gauss point.
#pragma once

#include "core/array_view.h"

#include <cstdint>

namespace zurt {

/// Spans of a curve up to this size count as none: the curve is flat.
constexpr double kFlatCurve = 1.0e-8;

/// T(i) = (DBULK(i) - first) * span / (last - first) + low for the points i = 1..N of row `material`; all of them are
/// `low` when last - first is at most kFlatCurve in size.
///   table  M x 2*P: the diffusion curves (model/curve_lookup.h; in and out)
///   DBULK  1..N: saved coefficients (input)
void ScaleDiffusionCurve(RealTable table, std::int32_t material, ConstRealArray DBULK, Word N, double first,
                         double last, double low, double span);

/// Coefficients Dx, Dy, Dz at concentration c: the saved coefficients scaled to the ends of each direction, between the
/// concentrations of the table.
///   table     M x 2*P: the diffusion curves (input)
///   points    1..M: points of each curve (input); with fewer than two Dx, Dy, Dz are the first ends
///   DBULK     1..P: the saved coefficients of the curve (input)
///   D1DIR, D2DIR  curve ends at 1..3 (input)
/// The curve of Z is scaled with its own span but begins at the first end of Y.
/// Returns 0, or 1 when c lies outside the curve (by more than 1e-10 at its ends); coefficients are left alone then.
std::int32_t CurveForDirection(ConstRealTable table, ConstIntArray points, std::int32_t material,
                               ConstRealArray DBULK, const double (&D1DIR)[4], const double (&D2DIR)[4],
                               double c, double& Dx, double& Dy, double& Dz);

} // namespace zurt
