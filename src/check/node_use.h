// Which nodes the elements of a problem use, and which parts of the mesh hang together.
//
// Radial elements count with the nodes of the mesh that they couple; those of substructured fibres bring no equation of their own
// and count none. Called by the check of a deck and where a linear system could not be solved.
#pragma once

#include "geometry/radial_views.h"
#include "run/run.h"
#include "solver/linear_system.h"

#include <string>
#include <vector>

namespace zurt {

/// Calls visit(nodes, count) for every element that brings equations: `count` node numbers, 0 for an absent one.
template <class Visit> void ForEachElement(const Run& run, Visit&& visit) {
    for (std::int32_t NGE = 1; NGE <= run.control.header.NGET; ++NGE) {
        const ElementGroup& group = run.groups[NGE];
        const bool radial = IsRadial(group);
        const ConstIntTable table = radial ? RadialNodes(run, group) : Connectivity(run, group);
        const Word elements = radial ? table.columns : table.rows,
                   count = radial ? table.rows : table.columns;
        std::int32_t nodes[kMostLayoutNodes];
        for (Word n = 1; n <= elements; ++n) {
            for (Word k = 1; k <= count; ++k)
                nodes[k - 1] = radial ? table(k, n) : table(n, k);
            visit(nodes, count);
        }
    }
}

/// Elements that use each node 1..NP (0 is not used).
std::vector<std::int32_t> ElementsOfNodes(const Run& run);

/// Nodes that elements couple, directly or through others.
struct MeshParts {
    std::vector<std::int32_t> first; // of node 1..NP: the node of least number in its part
    std::vector<bool> anchored;      // of that node: something in the part fixes the level of its values
};

/// A part is anchored by a held node, whatever its value comes from, or by a side with convection or radiation.
MeshParts PartsOfMesh(const Run& run);

/// "node 4 at (0, 0.5, 1)".
std::string NodeText(const Run& run, std::int32_t node);

/// Writes notes that lead from a linear system that has no solution to its cause: the step, the node of the equation, nodes
/// without an element, parts of the mesh that nothing holds.
///   equation  at which the solution failed; 0 when the solver can't tell
void NoteOnEquation(const Run& run, Word equation);

} // namespace zurt
