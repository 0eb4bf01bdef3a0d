#include "geometry/element_walk.h"

#include "core/stop.h"
#include "geometry/jacobian_failure.h"

#include <string>

namespace zurt {

namespace {

template <int Dimension>
[[noreturn]] void StopOnJacobian(const GaussWalk<Dimension>& walk, const double (&place)[Dimension],
                                 double DET) {
    TextUnit& unit = MessageUnit(walk.run);
    const std::int32_t Language = walk.run.job.Language;
    if constexpr (Dimension == 3)
        StopOnJacobian3D(unit, Language, walk.number, 0, place[0], place[1], place[2], DET);
    else
        StopOnJacobian2D(unit, Language, walk.number, place[0], place[1], DET);
}

// The sum of N(i) v(i).
template <int Dimension> double Interpolated(const ShapeValues<Dimension>& shape, const double* v, int ND) {
    double sum = 0.0;
    for (int i = 0; i < ND; ++i)
        sum += shape.H[i] * v[i];
    return sum;
}

} // namespace

template <int Dimension> Word PointsPerElement(const ElementGroup& group) {
    Word points = 1;
    for (int direction = 0; direction < Dimension; ++direction)
        points *= group.NGAUS[direction];
    return points;
}

template <int Dimension> void BeginWalk(GaussWalk<Dimension>& walk, const std::int32_t* orders) {
    walk.NGAUS = orders;
    walk.NEL = Connectivity(walk.run, walk.group);
    walk.nodes.ID = EquationNumbers(walk.run);
    walk.nodes.X = CoordinateColumn(walk.run, 1);
    walk.nodes.Y = CoordinateColumn(walk.run, 2);
    walk.nodes.Z = CoordinateColumn(walk.run, 3);
}

template <int Dimension> void TakeWalkElement(GaussWalk<Dimension>& walk, std::int32_t n) {
    // Cards write corners only inside 1..NP, so a first corner of 0 is a row that no card has written.
    if (walk.NEL(n, 1) == 0)
        StopWithLibraryError("deck " + walk.run.deck.name + ", element group " +
                             std::to_string(walk.group.NGE) + ": element " + std::to_string(n) +
                             " has no card; its number is left out between the cards");
    walk.number = n;
    ActiveNodes active;
    ListActiveNodes<Dimension>(walk.NEL, n, active);
    if (!ServesNodes(walk.points.active, active))
        SetElementPoints(active, walk.NGAUS, walk.points);
    GatherElement<Dimension>(walk.nodes, walk.NEL, n, active, walk.element);
}

template <int Dimension>
void PlaceWalkPoint(const GaussWalk<Dimension>& walk, const ElementPoint<Dimension>& point, double (&X)[3],
                    double& w) {
    const int ND = walk.points.active.ND;
    JacobianValues<Dimension> jacobian;
    if (!JacobianVolume<Dimension>(point.shape, walk.element.CORE, ND, jacobian))
        StopOnJacobian(walk, point.place, jacobian.DET);
    for (int axis = 0; axis < 3; ++axis)
        X[axis] = axis < Dimension ? Interpolated(point.shape, walk.element.CORE[axis], ND) : 0.0;
    const double radius = Dimension == 2 && walk.group.INDAX != 0 ? X[1] : 1.0;
    w = point.weight * radius * jacobian.DET;
}

#define ZURT_GAUSS_WALK(DIMENSION)                                                                           \
    template Word PointsPerElement<DIMENSION>(const ElementGroup&);                                          \
    template void BeginWalk(GaussWalk<DIMENSION>&, const std::int32_t*);                                     \
    template void TakeWalkElement(GaussWalk<DIMENSION>&, std::int32_t);                                      \
    template void PlaceWalkPoint(const GaussWalk<DIMENSION>&, const ElementPoint<DIMENSION>&, double(&)[3],  \
                                 double&)
ZURT_GAUSS_WALK(2);
ZURT_GAUSS_WALK(3);

} // namespace zurt
