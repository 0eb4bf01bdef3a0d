// Fluxes and coefficients of the 3D family at the nodes.
#pragma once

#include "job/run.h"

namespace zurt {

/// Adds for every element of the group, node by node, the flux -K grad c and the coefficients K of the Gauss point that
/// stands for the node to the nodal sums (elements/nodal_averaging.h). The rule is 2 x 2 x 2 whatever the group's orders
/// are: each of its points stands for the corner in whose octant it lies. A mid-side node takes the mean of its two
/// corners, the centre node the mean of all. Stops the run as forming does.
void AddElementFluxes3D(Run& run, ElementGroup& group);

} // namespace zurt
