// Element fluxes and coefficients on their way to the nodes: nine nodal vectors of sums and a counter for each node.
//
// LNDS1-3 mass flux x, y, z (times the molar mass when one is given), LNDS4-6 mass flux per unit time and surface,
// LNDS7-9 diffusion coefficients x, y, z; each 1..NP. The vectors exist when NDS is not 0. The group visits of the
// results phase add to them, the time loop averages once after the last group.
#pragma once

#include "job/run.h"

namespace zurt {

/// Sets the nine vectors and all counters to zero; the first group's visit of the results phase does so.
void ClearNodalResults(Run& run);

/// Divides the sums of every node by the number of contributions that the node has had, when that is above 1.
void AverageNodalResults(Run& run);

} // namespace zurt
