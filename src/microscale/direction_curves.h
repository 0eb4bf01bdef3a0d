// Diffusion coefficients by direction in the final run of a fit.
//
// Each direction has its own D-C curve: the saved curve, rescaled between the two ends that its fit has found.
// Coefficients and concentrations are in the deck's units. Called by the element loops at every Gauss point.
#pragma once

#include "core/array_view.h"

#include <cstdint>

namespace zurt {

/// Coefficients Dx, Dy, Dz at concentration c.
///   table     M x 2*P: the diffusion curves (model/curve_lookup.h). Row `material` is scratch while this runs and holds
///             DBULK at the end, unless the curve has fewer than two points: then Dx, Dy, Dz are the first ends.
///   points    1..M: points of each curve (input)
///   DBULK     1..P: the saved coefficients of the curve (input)
///   D1DIR, D2DIR  curve ends at 1..3 (input)
/// The curve of Z is scaled with its own span but begins at the first end of Y.
/// Returns 0, or 1 when c lies outside the curve (by more than 1e-10 at its ends); coefficients are left alone then.
std::int32_t CurveForDirection(RealTable table, ConstIntArray points, std::int32_t material,
                               ConstRealArray DBULK, const double (&D1DIR)[4], const double (&D2DIR)[4],
                               double c, double& Dx, double& Dy, double& Dz);

} // namespace zurt
