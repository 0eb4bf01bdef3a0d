// Messages of the element passes about curves and built-in materials asked for values outside their range.
//
// Each writes its lines to the listing and stops the run.
#pragma once

#include "model/analytic_materials.h"
#include "run/run.h"

namespace zurt {

/// A diffusion curve, or a conduction function, is not defined at a concentration.
[[noreturn]] void StopOnDiffusionRange(Run& run, std::int32_t curve, double concentration);

/// A specific heat curve is not defined at a temperature.
[[noreturn]] void StopOnSpecificHeatRange(Run& run, std::int32_t curve, double temperature);

/// T lies above or below the limits of a material in analytic form.
[[noreturn]] void StopOnAnalyticRange(Run& run, AnalyticRange range, std::int32_t material, double T);

} // namespace zurt
