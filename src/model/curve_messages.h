// Messages of the element passes about curves and built-in materials asked for values outside their range.
//
// Each writes its lines to the listing, a note that says where in the mesh to standard error, and stops the run.
#pragma once

#include "model/analytic_materials.h"
#include "model/curve_lookup.h"
#include "run/run.h"

namespace zurt {

/// Where a value was asked for.
struct ElementPlace {
    std::int32_t group = 0;
    std::int32_t element = 0; // 0: for all of the group
    std::int32_t point =
        0; // Gauss point, from 1 in the order of geometry/element_points.h; 0: none, as on a side
};

/// Writes the note of an argument that lies outside a curve, with the place, the step and the curve's two ends.
///   kind  what the curve is of: "diffusion"
void NoteOutsideCurve(const Run& run, const ElementPlace& place, const char* kind, std::int32_t number,
                      const CurveView& curve, double argument);

/// A diffusion curve, or a conduction function, is not defined at a concentration.
[[noreturn]] void StopOnDiffusionRange(Run& run, std::int32_t curve, double concentration,
                                       const ElementPlace& place);

/// A specific heat curve is not defined at a temperature.
[[noreturn]] void StopOnSpecificHeatRange(Run& run, std::int32_t curve, double temperature,
                                          const ElementPlace& place);

/// T lies above or below the limits of a material in analytic form.
[[noreturn]] void StopOnAnalyticRange(Run& run, AnalyticRange range, std::int32_t material, double T,
                                      const ElementPlace& place);

} // namespace zurt
