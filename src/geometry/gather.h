// Nodal data of one element: equation numbers, coordinates and values of its active nodes in compressed order.
//
// Values are concentrations in the deck's unit, coordinates lengths in the mesh's unit. Called for every element by the
// element loops; the views are made once per visit of a group.
#pragma once

#include "geometry/jacobian.h"
#include "run/run.h"

namespace zurt {

/// The nodal arrays that elements read, and how a node without an equation gets its value.
struct NodalViews {
    ConstIntArray ID;               // 1..NP
    ConstRealArray X, Y, Z;         // 1..NP
    ConstRealArray T, T0;           // 1..JEDN: current iterate, start of the step
    bool solutionRead = false;      // the problem is transient or iterates
    double outletStart = 0.0;       // value of a node without an equation at the start of the step
    double outletEnd = 0.0;         // and at its end
    ConstIntArray prescribedEntry;  // 1..NP: the entry of a node, 0 none; empty without entries
    ConstRealArray prescribedStart; // 1..NZADC
    ConstRealArray prescribedEnd;   // 1..NZADC
    bool byPrescribedValue = false; // the second form: see GatherNodeValue
    ConstRealArray nodeValues;      // 1..NP
};

NodalViews NodalViewsOf(const Run& run);

/// Views of numbers and places alone, for use before there is a solution: every value gathered is 0.
NodalViews NodalPlacesOf(const Run& run);

/// Column k (from 0) belongs to the element's node k + 1 in compressed order. (The increment of the step has no entry:
/// no term reads it.)
template <int Family> struct ElementNodes {
    NodeCoordinates<Family> CORE;
    double TE1[kMaxNodes<Family>];        // current iterate
    double TE0[kMaxNodes<Family>];        // start of the step
    std::int32_t LM[kMaxNodes<Family>];   // equation numbers
    std::int32_t node[kMaxNodes<Family>]; // node numbers
};

/// Current and start value of one node. With an equation it takes them from the solution, without one from its entry of
/// prescribed values, and without either from the outlet pair when its number is 0; a negative number leaves zeros.
/// In the second form a node without an equation takes one value for both: its entry's at the end of the step, or the value
/// of its node card.
void GatherNodeValue(const NodalViews& views, std::int32_t node, double& TE1, double& TE0);

/// Gathers the `active` nodes of element n from its row of NEL (1..NET, 1..NDMAX); all of them lie in 1..NP.
template <int Family>
void GatherElement(const NodalViews& views, ConstIntTable NEL, Word n, const ActiveNodes& active,
                   ElementNodes<Family>& element);

} // namespace zurt
