// The time step loop.
#pragma once

#include "job/run.h"

namespace zurt {

/// Walks through the NDT steps of the problem: advances time, iterates each step to equilibrium, expands the solution
/// to the nodes, saves the step and writes graphics and listing at their intervals. A steady problem takes the same
/// road without advancing time.
void SolutionPass(Run& run);

/// Node values by node (1..NP) from the solution by equation (1..JEDN): nodes without an equation (ID 0) take
/// `defaultValue`, and where they stand in the list of prescribed nodes the first matching prescribed value. Nodes
/// outside the model (ID below 0) are 0.
void ExpandToNodes(ConstIntArray ID, RealArray nodalValues, ConstRealArray solution,
                   ConstRealArray prescribedValues, ConstIntArray prescribedNodes, double defaultValue);

} // namespace zurt
