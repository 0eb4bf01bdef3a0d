// Element fluxes and coefficients on their way to the nodes: nine nodal vectors of sums and a counter for each node.
//
// LNDS1-3 mass flux x, y, z (times the molar mass when one is given), LNDS4-6 mass flux per unit time and surface,
// LNDS7-9 diffusion coefficients x, y, z; each 1..NP. The vectors exist when NDS is not 0. The group visits of the
// results phase add to them, the time loop averages once after the last group.
#pragma once

#include "run/run.h"

namespace zurt {

/// What one element contributes to one of its nodes, by axis.
struct NodalResult {
    double flux[3] = {};
    double coefficient[3] = {};
};

/// The sums while the groups are visited.
struct NodalSums {
    RealArray flux[3];                     // 1..NP
    RealArray coefficient[3];              // 1..NP
    std::int32_t* contributions = nullptr; // 1..NP at 0..NP-1
};

/// Sets the nine vectors and all counters to zero: ahead of the first group's visit of the results phase.
void ClearNodalResults(Run& run);

/// The sums of a run whose NDS is not 0, after ClearNodalResults.
NodalSums NodalSumsOf(Run& run);

/// Adds an element's contribution to node 1..NP.
inline void AddNodalResult(const NodalSums& sums, std::int32_t node, const NodalResult& result) {
    for (int axis = 0; axis < 3; ++axis) {
        sums.flux[axis](node) += result.flux[axis];
        sums.coefficient[axis](node) += result.coefficient[axis];
    }
    ++sums.contributions[node - 1];
}

/// Divides the sums of every node by the number of contributions that the node has had, when that is above 1, and
/// fills the mass fluxes from the fluxes.
void AverageNodalResults(Run& run);

} // namespace zurt
