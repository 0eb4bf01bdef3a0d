// Which nodes the elements of a problem use, and which parts of the mesh hang together.
//
// Radial elements count with the nodes of the mesh that they couple; those of substructured fibres bring no equation of their own
// and count none. Called by the check of a deck and where a linear system could not be solved.
#pragma once

#include "run/run.h"

#include <string>
#include <vector>

namespace zurt {

/// Elements that use each node 1..NP (0 is not used).
std::vector<std::int32_t> ElementsOfNodes(const Run& run);

/// Nodes that elements couple, directly or through others.
struct MeshParts {
    std::vector<std::int32_t> first; // of node 1..NP: the node of least number in its part
    std::vector<bool> anchored;      // of that node: something in the part fixes the level of its values
};

/// A part is anchored by a held node, a prescribed value, or a side with convection or radiation.
MeshParts PartsOfMesh(const Run& run);

/// "node 4 at (0, 0.5, 1)".
std::string NodeText(const Run& run, std::int32_t node);

/// Writes notes that lead from a linear system that has no solution to its cause: the step, the node of the equation, nodes
/// without an element, parts of the mesh that nothing holds.
///   equation  at which the solution failed; 0 when the solver can't tell
void NoteOnEquation(const Run& run, Word equation);

} // namespace zurt
