#include "geometry/element_walk.h"

#include "core/format.h"
#include "core/language.h"
#include "core/stop.h"
#include "geometry/group_views.h"

#include <algorithm>
#include <string>

namespace zurt {

template <int Dimension> Word PointsPerElement(const ElementGroup& group) {
    Word points = 1;
    for (int direction = 0; direction < Dimension; ++direction)
        points *= group.NGAUS[direction];
    return points;
}

template <int Dimension>
void BeginWalk(ElementWalk<Dimension>& walk, const std::int32_t* orders, const NodalViews& nodes) {
    std::copy(orders, orders + Dimension, walk.NGAUS);
    walk.NEL = Connectivity(walk.run, walk.group);
    walk.nodes = nodes;
    walk.axisymmetric = walk.group.INDAX != 0;
    if constexpr (Dimension == 1)
        walk.areas = ElementThickness(walk.run, walk.group);
}

template <int Dimension> void TakeWalkElement(ElementWalk<Dimension>& walk, std::int32_t n) {
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

// Texts differ by family: the line has words of its own, and the heading of a brick's volume point is Serbian in both
// languages.
template <int Dimension>
void StopOnJacobian(const ElementWalk<Dimension>& walk, int KFIX, const double* place, double determinant) {
    const std::int32_t Language = Dimension == 3 && KFIX < 1 ? kSerbian : walk.run.job.Language;
    TextUnit& unit = BeginMessage(walk.run);
    const char* heading = Say(Language, " ** GRESKA **: JAKOBIJAN JEDNAK ILI MANJI OD NULE ZA ELEMENT No.",
                              " ** ERROR **: JACOBIAN EQUAL OR LESS THEN ZERO FOR ELEMENT No.");
    if constexpr (Dimension == 1)
        Write(unit, "(A,I10/9X,'R=',D12.5/6X,'DET1=',D12.5)",
              Say(Language, " ** GRESKA **: JAKOBIJAN JEDNAK ILI MANJI OD NULE ZA ELEMENT No. =",
                  " ** ERROR **: JACOBIAN EQUAL OR LESS THEN ZERO FOR ELENMENT No. ="),
              walk.number, place[0], determinant);
    else if constexpr (Dimension == 2)
        Write(unit, "(A,I10/9X,'R=',D12.5/9X,'S=',D12.5/6X,'DET2=',D12.5)", heading, walk.number, place[0],
              place[1], determinant);
    else
        Write(unit, "(A,I10/6X,'KFIX=',I5/9X,'R=',D12.5/9X,'S=',D12.5/9X,'T=',D12.5/7X,'DET=',D12.5)",
              heading, walk.number, KFIX, place[0], place[1], place[2], determinant);
    StopRun(unit);
}

template <int Dimension>
void PlaceOfPoint(const ElementWalk<Dimension>& walk, const ElementPoint<Dimension>& point, double (&X)[3]) {
    for (int axis = 0; axis < 3; ++axis)
        X[axis] = axis < Dimension
                      ? Interpolate<0>(point.shape.H, walk.element.CORE[axis], walk.points.active.ND)
                      : 0.0;
}

template <int Dimension>
void LocateSidePoint(const ElementWalk<Dimension>& walk, int KFIX, SidePoint<Dimension>& point) {
    const ActiveNodes& active = walk.points.active;
    const NodeCoordinates<Dimension>& CORE = walk.element.CORE;
    const auto [r, s, t] = point.place;
    point.measure = point.weight;
    if constexpr (Dimension == 1) {
        ShapeFunctions1D(r, active, point.shape);
    } else {
        JacobianValues<Dimension> jacobian;
        bool sound;
        if constexpr (Dimension == 2)
            sound = ShapeAndJacobian2D(r, s, KFIX, active, CORE, point.shape, jacobian);
        else
            sound = ShapeAndJacobian3D(r, s, t, KFIX, walk.run.control.header.NDS, active, CORE, point.shape,
                                       jacobian);
        if (!sound)
            StopOnJacobian(walk, KFIX, point.place, jacobian.DETS);
        point.measure *= jacobian.DETS;
        if (Dimension == 2 && walk.axisymmetric)
            point.measure *= Interpolate<0>(point.shape.H, CORE[kEdgeRadiusAxis], active.ND);
    }
}

#define ZURT_ELEMENT_WALK(DIMENSION)                                                                         \
    template Word PointsPerElement<DIMENSION>(const ElementGroup&);                                          \
    template void BeginWalk(ElementWalk<DIMENSION>&, const std::int32_t*, const NodalViews&);                \
    template void TakeWalkElement(ElementWalk<DIMENSION>&, std::int32_t);                                    \
    template void StopOnJacobian(const ElementWalk<DIMENSION>&, int, const double*, double);                 \
    template void PlaceOfPoint(const ElementWalk<DIMENSION>&, const ElementPoint<DIMENSION>&, double(&)[3]); \
    template void LocateSidePoint(const ElementWalk<DIMENSION>&, int, SidePoint<DIMENSION>&)
ZURT_ELEMENT_WALK(1);
ZURT_ELEMENT_WALK(2);
ZURT_ELEMENT_WALK(3);

} // namespace zurt
