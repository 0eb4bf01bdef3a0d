// Diffusion in a degrading polymer, whose pores open as it dissolves.
//
// With the data of the degradation card: the porosity grows with the rate K, the coefficient in the solid falls with the
// rate Kw, and both phases, in equilibrium through the partitioning, conduct in parallel. Called by the radial fibre
// element under INDDEGR 1, with TIME in the deck's unit.
#pragma once

#include "run/control.h"

namespace zurt {

struct DegradedCoefficient {
    double D = 0.0;   // coefficient of the polymer with its pores
    double phi = 0.0; // solid fraction, 1 - porosity
};

/// The law at time t:
///   porosity  P = DEGIPOR + (1 - DEGIPOR) (1 - exp(-DEGRATEK t))^2
///   solid     S = DIFFCDS exp(-DEGRATEKW t)^DEGALPHA
///   both      D = (S (1 - P) + DIFFCDL DEGPART P) / ((1 - P) + DEGPART P)
DegradedCoefficient DegradedDiffusion(const HeaderFields& header, double t);

} // namespace zurt
