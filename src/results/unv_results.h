// Result steps of the graphics file: universal datasets 55 (data at nodes).
#pragma once

#include "run/run.h"

namespace zurt {

/// Four datasets of one result step: concentrations, mass flux, mass flux per unit time and surface, diffusion
/// coefficients, each for all NP nodes. Behind them the first has the inner nodes of substructured radial fibres, under the
/// numbers from NP + 1 on that they have in the mesh, group by group. The result number is state.GraphicsWritten. Concentrations and components of
/// the mass flux below 1e-15 in size are set to 0, in the arrays too.
void WriteUnvResults(Run& run);

} // namespace zurt
