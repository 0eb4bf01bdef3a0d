// Tables of nodal results on the listing.
#pragma once

#include "run/run.h"

namespace zurt {

/// Page head, iteration count when iterations ran, nodal concentrations (four to a line) and nodal mass fluxes x, y
/// (two nodes to a line). Concentrations below 1e-15 in size are set to 0 in the array. Models without NDS have no
/// nodal fluxes: the table shows zeros.
void PrintNodalResults(Run& run);

} // namespace zurt
