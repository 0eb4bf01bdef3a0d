// Nodes that no fluid touches leave the model: their equations, and the layout of the system matrix with them.
//
// Called by the fibre step after the last group has been classified, in runs that begin with fibres, and by the
// homogenization whenever it changes over between the model with fibres and the equivalent medium.
#pragma once

#include "run/fibre_set.h"
#include "run/run.h"

namespace zurt {

/// Gives nodes with a mark below 1 that have an equation the number -1 and numbers the others 1, 2, 3 ... anew; nodes
/// that are held stay held. Returns false, with nothing changed, when all marks are 1 or above.
///   ID     1..NP (in and out)
///   marks  1..NP: marked elements at each node (input)
///   JEDN   number of equations (output)
bool LeaveOutUnmarkedNodes(IntArray ID, ConstIntArray marks, std::int32_t& JEDN);

/// Which elements take part in a layout: all, or the marked ones of groups under fibres and all of the others.
enum class LayoutElements { Kept, All };

/// Forms MAXA in its place for the equation numbers ID (1..NP, 1..JEDN of them) and returns NWK. In sparse mode there is
/// no such layout: nothing is formed and NWK is 0.
Word FormLayout(Run& run, const FibreModel& model, ConstIntArray ID, std::int32_t JEDN,
                LayoutElements elements);

/// Numbers the equations of the model in hand anew: with IEHM not 0 all nodes, held or not, otherwise those with a mark
/// of 1 or above, the others getting 0 (not -1 as from LeaveOutUnmarkedNodes: they then take the outlet's value like held
/// nodes, where -1 means the value 0). Forms MAXA and NWK anew unless JEDN stays what it was and the layout serves all
/// elements. The partition must hold the larger of the layouts (ReserveFullLayout). Called when a run changes over between the
/// models, and ahead of each direction of a fit, so that the model with fibres is the same in all of them.
void ReformEquationNumbers(Run& run);

/// Notes in the run's state how much room the layout with an equation at every node needs, so that the partition holds it.
/// MAXA gets a larger section of its own when that of the deck's numbering has no room for all nodes.
void ReserveFullLayout(Run& run);

} // namespace zurt
