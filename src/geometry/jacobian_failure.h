// The fatal messages of an element whose Jacobian is not positive: an inverted, degenerate or tiny element, or a
// surface record on a collapsed face or edge. Called by the families when a function of geometry/jacobian.h says
// that a point is not sound.
#pragma once

#include "core/text_unit.h"

#include <cstdint>

namespace zurt {

/// Writes the element, KFIX, the natural coordinates and the determinant (for a face point, KFIX 1 and above, the
/// surface scale) to the listing and ends the run. A volume point's heading is Serbian in both languages.
[[noreturn]] void StopOnJacobian3D(TextUnit& listing, int Language, std::int32_t element, std::int32_t KFIX,
                                   double r, double s, double t, double determinant);

/// The same for the quadrilateral: DET of an area point, DETS of an edge point.
[[noreturn]] void StopOnJacobian2D(TextUnit& listing, int Language, std::int32_t element, double r, double s,
                                   double determinant);

/// The same for the line, whose determinant is its length over that of its reference element.
[[noreturn]] void StopOnJacobian1D(TextUnit& listing, int Language, std::int32_t element, double r,
                                   double determinant);

} // namespace zurt
