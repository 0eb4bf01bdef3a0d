// The fibre step: what the mesh makes of the fibres, once a problem.
//
// Called by the driver when there are fibre sets, behind the diffusion curves (and the copy that a fit takes of one), and
// ahead of the solution vectors, whose length it may change.
#pragma once

#include "microscale/fibre_cells.h"
#include "run/fibre_set.h"
#include "run/run.h"

namespace zurt {

/// In this order: takes a word per node in `A`; clips the fibres to the box of the device cards; classifies the Gauss
/// points of every plane and space group; with IEHM 1 computes the start value of HEQ from the first group that has any,
/// and merges the correction tables; otherwise, and in a fit, takes the nodes outside the fluid out of the model and forms
/// the layout of the system matrix anew; sets POROSITY. A fibre that lies outside the box, a box without depth under
/// bricks, and fibres that leave no equation end the run with a library error. A model without plane and space groups is left alone.
void ApplyFibres(Run& run, FibreModel& model);

/// The search over all fibres of a model that has been through the step, with cells for about `points` searches in the mesh.
FibreSearch SearchOverMesh(const Run& run, const FibreModel& model, Word points);

} // namespace zurt
