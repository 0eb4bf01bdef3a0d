// One step of time, and passes over all of them.
//
// A pass begins with BeginPass; then, while the clock's KOR is below the pass's NDT, SolveStep, what the caller takes from
// the step, WriteStep, FlushUnits, and what progress and checkpoints do behind it. SolutionPass is the plain one; fits and the direct calculation have their own.
#pragma once

#include "run/run.h"

namespace zurt {

/// Clock and counters of a problem that has been read and is now to be solved.
void BeginSolution(Run& run);

/// The first step is next, at time 0; StepSolution holds the start values. Gives back what was taken of `A` behind LMAXM.
void BeginPass(Run& run, const Pass& pass);

/// Advances time (not in a steady problem), iterates to equilibrium, expands the solution to the nodes, evaluates the
/// nodal results where the pass writes any, adds a row to the table of balances, and saves the step.
void SolveStep(Run& run);

/// Writes the step to the files for viewers, graphics file and listing, if it is their turn and the pass writes at all. True for
/// the listing.
bool WriteStep(Run& run);

/// Walks through the steps of a plain problem.
void SolutionPass(Run& run, std::int32_t steps);

/// Node values by node (1..NP) from the solution by equation (1..JEDN): nodes without an equation (ID 0) take
/// `defaultValue`, and where they stand in the list of prescribed nodes the first matching prescribed value. Nodes
/// outside the model (ID below 0) are 0.
void ExpandToNodes(ConstIntArray ID, RealArray nodalValues, ConstRealArray solution,
                   ConstRealArray prescribedValues, ConstIntArray prescribedNodes, double defaultValue);

} // namespace zurt
