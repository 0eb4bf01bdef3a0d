// Nodes that no fluid touches leave the model: their equations, and the layout of the system matrix with them.
//
// Called by the fibre step after the last group has been classified, in runs that begin with fibres.
#pragma once

#include "job/run.h"
#include "microscale/fibre_set.h"

namespace zurt {

/// Gives nodes with a mark below 1 that have an equation the number -1 and numbers the others 1, 2, 3 ... anew; nodes
/// that are held stay held. Returns false, with nothing changed, when all marks are 1 or above.
///   ID     1..NP (in and out)
///   marks  1..NP: marked elements at each node (input)
///   JEDN   number of equations (output)
bool LeaveOutUnmarkedNodes(IntArray ID, ConstIntArray marks, std::int32_t& JEDN);

/// Forms MAXA and NWK anew, in the place that MAXA has, from the elements that are kept: the marked ones of groups under
/// fibres and all of the others. In sparse mode there is no such layout.
void FormKeptLayout(Run& run, const FibreModel& model);

} // namespace zurt
