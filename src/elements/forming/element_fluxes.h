// Fluxes and coefficients of the isoparametric families at the nodes.
#pragma once

#include "run/run.h"

namespace zurt {

/// Adds for every element of the group, node by node, the flux -K grad c and the coefficients K of the Gauss point that
/// stands for the node to the nodal sums (elements/forming/nodal_averaging.h). The rule has two points in each direction whatever
/// the group's orders are: each of its points stands for the corner in whose part of the element it lies. A mid-side node
/// takes the mean of its two corners, the centre node the mean of all. A quadrilateral has no part along z; the flux of a
/// line goes along its tangent, and its one coefficient is that of x. Stops the run as forming does.
template <int Family> void AddElementFluxes(Run& run, const ElementGroup& group);

} // namespace zurt
