// Forming and results of the isoparametric families: lines, quadrilaterals, bricks.
//
// The discrete equation of an element is (K + C/dt) dT = Q + (C/dt) T0 - (K + C/dt) T at the last iterate T: Euler
// backward, with the secant matrix. The families differ in the measure of a Gauss point, in their surface terms, and in
// what they do besides. Called for every group at every iteration, and once a step for the nodal results.
#pragma once

#include "elements/surfaces/surface_terms.h"
#include "run/run.h"

namespace zurt {

/// One visit of a group: the element work block behind LMAXM, then all elements, which go to the system. Only Euler
/// backward exists: under an INTEB other than 1 nothing is formed and nothing said, but that under INTEB 2 a group of
/// lines ends the run. Quadrilaterals give the work block back.
template <int Family> void FormGroup(Run& run, const ElementGroup& group);

/// Likewise; the elements add their fluxes and coefficients to the nodal sums.
template <int Family> void AddGroupFluxes(Run& run, const ElementGroup& group);

/// Forms this process's share of the elements (core/ranks.h) and adds them to the system (solver/linear_system.h). `conduction` is the place of the packed
/// element matrix in `A`. Stops the run on an element without a positive Jacobian and on curves asked for values outside
/// their range.
template <int Family> void FormElements(Run& run, const ElementGroup& group, Word conduction);

/// The element whose matrix holds the largest entry at the solution in hand: what rounding of K T is measured by.
struct StiffestElement {
    std::int32_t group = 0, element = 0; // 0: none yet
    double entry = 0.0;                  // on the diagonal of K + C/dt
};

/// Looks through one group, and keeps what is there already if it is larger. Elements in fibres are passed over.
template <int Family>
void FindStiffestElement(Run& run, const ElementGroup& group, StiffestElement& stiffest);

/// Adds the right-hand sides of the listed elements, load minus conduction and capacity at the solution in hand, to the
/// sums of their nodes; the system is left alone. Elements that lie in fibres as a whole are passed over. Where processes share
/// the run each adds its share of the list, and the caller sums.
///   elements      numbers from 1..NET (input)
///   withSurfaces  flux, convection and radiation through their sides take part
///   nodalSums     1..NP (in and out)
template <int Family>
void AddElementResiduals(Run& run, const ElementGroup& group, ConstIntArray elements, bool withSurfaces,
                         RealArray nodalSums);

/// What the elements hold and pass on at the solution in hand. Amounts are capacity times concentration times volume; in
/// plane groups to a unit of thickness, in axisymmetric ones to a radian.
struct ElementBalance {
    RealArray residual;   // 1..NP: load less capacity and conduction, surface terms with it
    RealArray volumePart; // 1..NP: the same of the listed elements alone and without surface terms
    ConstIntArray listed; // numbers of the group's elements for volumePart, rising
    RealArray stored;     // 1..NMATT: amount in each material
    RealArray storing;    // 1..NMATT: its growth over the step per unit time
    double sources = 0.0; // what volume sources give per unit time
    SurfaceFlows surfaces;
    double moved = 0.0; // the absolute values of what each element stores and of its source, per unit time
};

/// Adds the elements of the group; the system and what curves gave last (run.visits) are left alone. A problem that does not
/// iterate is taken at its solution likewise.
template <int Family> void AddElementBalance(Run& run, const ElementGroup& group, ElementBalance& balance);

} // namespace zurt
