// Elements that a fibre wall cuts: where in them the fluid lies, by sub-cells, and a rule of few points that integrates over it.
//
// On wish (--wall-cells N) an element that lies partly in fluid is divided into N x N (x N) sub-cells with a rule of order 2 in
// each; every one of these points lies in fluid or in a fibre as any Gauss point does. Forming does not walk over them: once
// a problem they are condensed to the points of a Gauss rule of order 3 (5 with mid-side nodes). Point p takes the share
//   share(p) = (sum over sub-points q in fluid of w(q) L_p(q)) / w(p),
// L_p being the polynomial that is 1 at p and 0 at the rule's other points. Sums over p with weights w(p) share(p) are those over
// the sub-points in fluid for every polynomial of degree order - 1 a direction, products of shape functions among them; a
// share may lie outside 0..1. Source: moment fitting, B. Mueller, F. Kummer, M. Oberlack, Int. J. Numer. Meth. Engng 96 (2013).
// Lengths are in the mesh's unit.
#pragma once

#include "geometry/element_walk.h"
#include "microscale/fibre_search.h"

#include <vector>

namespace zurt {

/// Order of the rule that sub-points of a group are condensed to.
template <int Family> constexpr std::int32_t CondensedOrder(std::int32_t NDMAX) {
    return NDMAX > kCorners<Family> ? 5 : 3;
}

template <int Family> struct WallCells {
    std::int32_t along = 0;              // sub-points in each direction, 2 N
    std::int32_t order = 0;              // of the rule that they are condensed to
    std::vector<double> place;           // natural coordinate of sub-point i along a direction
    std::vector<double> moment;          // weight of i times L_k(i), at i * order + k
    ActiveNodes active{};                // the nodes that H is made for
    std::vector<double> H;               // shape functions at the sub-points, ND to a point
    ElementPoints<Family> rule{};        // the condensed rule, for the same nodes
    std::vector<NearestFibre> nearest{}; // scratch: of each sub-point
};

/// Sub-points for N sub-cells in elements of up to NDMAX nodes.
template <int Family> WallCells<Family> MakeWallCells(std::int32_t N, std::int32_t NDMAX);

/// What a cut element has at the points of its condensed rule, one entry a point.
struct CutElement {
    std::vector<double> share;             // of the point that is fluid
    std::vector<GaussFibreRecord> records; // where the point lies in a fibre: of the fluid nearby
    double fluid = 0.0, volume = 0.0;      // of the element
};

/// Looks for a wall in the walk's element in hand. False when its sub-points lie on one side; else `cut` is filled.
template <int Family>
bool CutByWall(WallCells<Family>& cells, const ElementWalk<Family>& walk, const FibreSearch& search,
               CutElement& cut);

} // namespace zurt
