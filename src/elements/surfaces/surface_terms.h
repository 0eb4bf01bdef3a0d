// Flux, convection and radiation through the sides of one element: what its surface record adds to matrix and load.
//
// Curves take times and concentrations in the deck's units, lengths are those of the mesh. Only the forming pass of
// quadrilaterals applies the terms, behind the time term and the residual and ahead of the assembly; lines and bricks
// have them by the same pattern. A problem that iterates takes the terms in incremental form (the load carries
// environment minus concentration), any other carries the environment alone and no radiation.
#pragma once

#include "elements/surfaces/surface_cards.h"
#include "geometry/element_walk.h"
#include "model/function_tables.h"
#include "run/run.h"

namespace zurt {

/// What flows in through sides, amount per unit time.
struct SurfaceFlows {
    double flux = 0.0, convection = 0.0, radiation = 0.0;
};

/// What the surface terms read in one visit of a group.
struct SurfaceTables {
    bool present = false; // some function of surfaces exists: the group has a surface block
    ConstIntArray NSURF;  // 1..NET
    ConstIntTable ISURF;  // see SurfaceRecords
    FunctionTable flux, convection, environment, emissivity;
    ConstRealArray shapeFactors; // 1..NFO
    double SBC = 0.0;            // Stefan-Boltzmann constant
    double TIME = 0.0;
    bool nonlinear = false;        // the problem iterates within a step
    SurfaceFlows* flows = nullptr; // where the flows by kind are added, too
};

/// Made once per visit of the group, at the current TIME.
template <int Family> SurfaceTables SurfaceTablesOf(const Run& run, const ElementGroup& group);

/// Adds the terms of the walk's element in hand.
///   held  what curves of this group gave last (in and out)
///   K    packed upper triangle of the element matrix, row by row, ND*(ND+1)/2 (input, output)
///   FE   1..ND: right-hand side (input, output)
/// Nothing happens when tables.present is false or the element has no record. Stops the run on a side without extent
/// and on a curve that is not defined at its argument; values that a curve gives nowhere stay those of the side before,
/// in `held`.
template <int Family>
void SurfaceTerms(const ElementWalk<Family>& walk, const SurfaceTables& tables, HeldCurveValues& held,
                  RealArray K, RealArray FE);

} // namespace zurt
