// The one walk over the elements of an isoparametric group and over their Gauss points: nodes, points, Jacobians, and
// the measure of a point, which is what of the element's length, area or volume it stands for.
//
// Lengths are in the mesh's unit. Points run in the order of geometry/element_points.h. The fibre step, forming, nodal
// fluxes, surface terms, torsion and the direct coefficient all stand on it and add what is theirs.
#pragma once

#include "geometry/element_points.h"
#include "geometry/gather.h"
#include "geometry/jacobian.h"

#include <cstdint>

namespace zurt {

/// The coordinate, from 0, that is the radius of axisymmetric groups: in lines x, in areas y.
template <int Family> constexpr int kRadiusAxis = kDimension<Family> == 1 ? 0 : 1;

/// On the edges of axisymmetric areas it is x all the same.
constexpr int kEdgeRadiusAxis = 0;

template <int Family> struct ElementWalk {
    Run& run;
    const ElementGroup& group;
    ConstIntTable NEL{};
    NodalViews nodes{};
    std::int32_t NGAUS[kDimension<Family>] = {};
    bool axisymmetric = false;      // of no use in space
    ConstRealArray areas{};         // lines: 1..NET
    ElementPoints<Family> points{}; // of the rule, for the nodes of the element in hand
    std::int32_t number = 0;        // of the element in hand
    ElementNodes<Family> element{};
};

/// Gauss points of each element of the group.
template <int Family> Word PointsPerElement(const ElementGroup& group);

/// Views for a walk over walk.group with the rule of these orders (1..5 in each direction). `nodes` says what is gathered:
/// NodalViewsOf, or NodalPlacesOf for a walk that reads no nodal values.
template <int Family>
void BeginWalk(ElementWalk<Family>& walk, const std::int32_t* orders, const NodalViews& nodes);

/// Takes element n in hand: its nodes, and the table of points when they differ from those of the element before. An element
/// without a card ends the run with a library error.
template <int Family> void TakeWalkElement(ElementWalk<Family>& walk, std::int32_t n);

/// Ends the run with the family's message: at a point of the element in hand `determinant` is not above
/// kSmallestJacobian. For a point of a side KFIX is 1 and above, and the determinant its surface scale.
///   place  the natural coordinates
template <int Family>
[[noreturn]] void StopOnJacobian(const ElementWalk<Family>& walk, int KFIX, const double* place,
                                 double determinant);

/// The measure of a point of the element in hand where the Jacobian's determinant is DET: weight times DET, for lines times
/// their area, in axisymmetric groups times the radius. (The thickness of a quadrilateral has no effect.)
template <int Nodes, int Family>
inline double PointMeasure(const ElementWalk<Family>& walk, const ElementPoint<Family>& point, double DET) {
    double measure = point.weight;
    if constexpr (kDimension<Family> == 1)
        measure *= walk.areas(walk.number);
    if constexpr (kDimension<Family> < 3)
        if (walk.axisymmetric)
            measure *= Interpolate<Nodes>(point.shape.H, walk.element.CORE[kRadiusAxis<Family>],
                                          walk.points.active.ND);
    return measure * DET;
}

/// Jacobian and measure of a point of the element in hand, be it of its rule or of another one for the same nodes. Ends
/// the run when the determinant is not positive. `Nodes`: see NodeCount.
template <int Nodes = 0, int Family>
inline double LocatePoint(const ElementWalk<Family>& walk, const ElementPoint<Family>& point,
                          JacobianValues<Family>& jacobian) {
    if (!JacobianVolume<Family>(point.shape, walk.element.CORE, walk.points.active.ND, jacobian))
        StopOnJacobian(walk, 0, point.place, jacobian.DET);
    return PointMeasure<Nodes>(walk, point, jacobian.DET);
}

/// The place X of a point; z is 0 in the plane.
template <int Family>
void PlaceOfPoint(const ElementWalk<Family>& walk, const ElementPoint<Family>& point, double (&X)[3]);

/// A point on a side (end, edge, face) of an element.
template <int Family> struct SidePoint {
    double place[3] = {}; // r, s, t (input)
    double weight = 1.0;  // of the rule over the side (input)
    ShapeValues<Family> shape;
    double measure; // weight times surface scale; on axisymmetric edges times x. An end has no extent: 1
};

/// Shape functions and measure of a point of the element in hand on the side where natural direction KFIX (from 1) is
/// held. Ends the run on a side without extent.
template <int Family>
void LocateSidePoint(const ElementWalk<Family>& walk, int KFIX, SidePoint<Family>& point);

} // namespace zurt
