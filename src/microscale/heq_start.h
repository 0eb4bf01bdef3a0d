// Start value of the equivalent wall distance HEQ: the mean distance from the walls of the fibres, over nodes.
//
// Lengths are in the mesh's unit. Called by the fibre step right after the first group has been classified, when IEHM
// is 1.
#pragma once

#include "run/fibre_set.h"
#include "run/run.h"

namespace zurt {

/// For every set the mean wall distance at nodes that belong to one marked element alone, from distances at Gauss points
/// weighted by the shape functions; points farther than WALLCUT stay out, and a set without any such node takes WALLCUT.
/// Sets the volumes of the sets, their meanDistance, and the model's POROSITY and HEQ: in space the mean of the sets
/// weighted by volume, in the plane their plain mean. With IDIAM 1 the molecule's radius is subtracted from
/// distances and added to the result.
///   nodeMarks  1..NP: marked elements at each node (input)
///   low, high  the region of the group's Gauss points
template <int Family>
void ComputeHeqStart(Run& run, FibreModel& model, const ElementGroup& group, ConstIntArray nodeMarks,
                     const double (&low)[3], const double (&high)[3]);

} // namespace zurt
