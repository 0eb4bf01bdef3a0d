// Built-in polynomials of conductivity and specific heat in temperature, by material number 1 to 10; every other
// number acts as 1.
//
// They belong to a fixed set of solids in heat conduction and keep their coefficients to the digit, some of which
// are single-precision numbers (core/widened_constants.h). Temperatures and results are in the units of those polynomials. Called by the
// element passes at every integration point of a nonlinear problem whose material has no curve; kernels alone.
#pragma once

#include "core/array_view.h"

#include <cstdint>

namespace zurt {

enum class AnalyticRange { Within, AboveMaximum, BelowMinimum };

/// Conductivities in three directions at temperature T.
///   material  1..NMATT
///   maximum   1..NMATT: highest allowed T of each material (input)
///   minimum   1..NMATT: lowest (input); both limits themselves are allowed
/// K1..K3 are set only with Within; StopOnAnalyticRange (model/curve_messages.h) reports the other answers.
AnalyticRange AnalyticConduction(std::int32_t material, double T, ConstRealArray maximum,
                                 ConstRealArray minimum, double& K1, double& K2, double& K3);

/// Specific heat at temperature T times the density of the material; T has no range here.
///   density   1..NMATT (input)
double AnalyticSpecificHeat(std::int32_t material, double T, ConstRealArray density);

} // namespace zurt
