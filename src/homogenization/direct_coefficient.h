// The effective diffusion coefficient taken directly from the model with fibres, step by step.
//
// In the first pass over the steps each step gives one pair: mean concentration and coefficient, which is minus the mean
// flux in direction INDDEG over the mean gradient. In the second pass the equivalent medium runs with that table. The
// domain is the box of the fibres; without one, the whole mesh. Lengths are in the mesh's unit. Called by the driver when
// IDIRECTD is 1, and by the time loop in the first pass.
#pragma once

#include "run/run.h"

namespace zurt {

/// Both passes, and the tables between and behind them.
void RunDirectCalculation(Run& run);

/// First pass: puts the pair of step KOR into DIRECTTAB and writes its row to the mass file of INDDEG. Concentration is
/// the mean over the Gauss points in fluid; the flux is the sum over all points over the volume of the whole domain; the
/// gradient is the difference of the means over the two end cross-sections over their distance. Without a gradient the
/// coefficient is that of the first material's curve.
void RecordDirectStep(Run& run);

} // namespace zurt
