// Residuals of the elements in the last layer of a channel mesh, surface terms included.
//
// The mesh of a device is regular: NXFIB (in group 2 NXPCL) layers of NYFIB x NZFIB bricks, numbered layer by layer.
// Called once a step by the time loop in device problems (NDS 1 and 3), after the nodal fluxes. Nothing of a run reads
// the sums: they are the amounts per time that leave through the nodes of the layer.
#pragma once

#include "run/run.h"

namespace zurt {

/// Sets run.averaging.layerResiduals (1..NP) for a group of bricks: the right-hand sides of elements a*b - b + 1 to a*b,
/// with a layers of b elements, summed by node. Elements outside the group are passed over.
void FormOutletLayer3D(Run& run, const ElementGroup& group);

/// The pass over group 1 and, in problems with more than two groups, over group 2; each where it is one of bricks.
void FormOutletLayers(Run& run);

} // namespace zurt
