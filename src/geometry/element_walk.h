// A walk over the Gauss points of a group of quadrilaterals or bricks: where each point lies, and its weight.
//
// Points run in the order of the forming visits. Lengths are in the mesh's unit. Used by the loops of the fibre step,
// which run before there is a solution: nodal values are not read.
#pragma once

#include "geometry/element_points.h"
#include "geometry/gather.h"

#include <cstdint>

namespace zurt {

template <int Dimension> struct GaussWalk {
    Run& run;
    const ElementGroup& group;
    ConstIntTable NEL{};
    NodalViews nodes{};
    const std::int32_t* NGAUS = nullptr; // orders of the rule
    ElementPoints<Dimension> points{};   // for the nodes of the element in hand
    std::int32_t number = 0;             // of the element in hand
    ElementNodes<Dimension> element{};
};

/// Gauss points of each element of the group.
template <int Dimension> Word PointsPerElement(const ElementGroup& group);

/// Views for a walk over walk.group, over the points of the rule with these orders (1..5 in each direction; they stay
/// the caller's).
template <int Dimension> void BeginWalk(GaussWalk<Dimension>& walk, const std::int32_t* orders);

/// Takes element n in hand. An element without a card ends the run with a library error.
template <int Dimension> void TakeWalkElement(GaussWalk<Dimension>& walk, std::int32_t n);

/// A point of the element in hand, of its rule or of another one for its nodes: its place X (z is 0 in the plane) and its
/// weight w, the rule's times the Jacobian's determinant, and times the radius in axisymmetric groups. A determinant that is not positive ends the run
/// with the family's message.
template <int Dimension>
void PlaceWalkPoint(const GaussWalk<Dimension>& walk, const ElementPoint<Dimension>& point, double (&X)[3],
                    double& w);

} // namespace zurt
