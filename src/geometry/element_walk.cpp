#include "geometry/element_walk.h"

#include "core/format.h"
#include "core/language.h"
#include "core/stop.h"
#include "geometry/group_views.h"
#include "geometry/jacobian_cause.h"

#include <algorithm>
#include <string>

namespace zurt {

template <int Family> Word PointsPerElement(const ElementGroup& group) {
    Word points = 1;
    for (int direction = 0; direction < kDimension<Family>; ++direction)
        points *= group.NGAUS[direction];
    return points;
}

template <int Family>
void BeginWalk(ElementWalk<Family>& walk, const std::int32_t* orders, const NodalViews& nodes) {
    std::copy(orders, orders + kDimension<Family>, walk.NGAUS);
    walk.NEL = Connectivity(walk.run, walk.group);
    walk.nodes = nodes;
    walk.axisymmetric = walk.group.INDAX != 0;
    if constexpr (kDimension<Family> == 1)
        walk.areas = ElementThickness(walk.run, walk.group);
}

template <int Family> void TakeWalkElement(ElementWalk<Family>& walk, std::int32_t n) {
    // Cards write corners only inside 1..NP, so a first corner of 0 is a row that no card has written.
    if (walk.NEL(n, 1) == 0)
        StopWithLibraryError("deck " + walk.run.deck.name + ", element group " +
                             std::to_string(walk.group.NGE) + ": element " + std::to_string(n) +
                             " has no card; its number is left out between the cards");
    walk.number = n;
    ActiveNodes active;
    ListActiveNodes<Family>(walk.NEL, n, active);
    if (!ServesNodes(walk.points.active, active))
        SetElementPoints(active, walk.NGAUS, walk.points);
    GatherElement<Family>(walk.nodes, walk.NEL, n, active, walk.element);
}

namespace {

template <int Family>
void NoteOnJacobian(const ElementWalk<Family>& walk, int KFIX, const double* place, double determinant) {
    const int point = KFIX < 1 ? NumberOfPoint(walk.points, place) : 0;
    WriteNote(
        "element group " + std::to_string(walk.group.NGE) + ", element " + std::to_string(walk.number) +
        (point > 0 ? ", Gauss point " + std::to_string(point) : "") + ": likely cause: " +
        CauseOfJacobian<Family>({walk.points, walk.element.CORE, walk.element.node}, KFIX, determinant));
}

} // namespace

// Texts differ by family: the line has words of its own, and the heading of a brick's volume point is Serbian in both
// languages.
template <int Family>
void StopOnJacobian(const ElementWalk<Family>& walk, int KFIX, const double* place, double determinant) {
    const std::int32_t Language = kDimension<Family> == 3 && KFIX < 1 ? kSerbian : walk.run.job.Language;
    TextUnit& unit = BeginMessage(walk.run);
    NoteOnJacobian(walk, KFIX, place, determinant);
    const char* heading = Say(Language, " ** GRESKA **: JAKOBIJAN JEDNAK ILI MANJI OD NULE ZA ELEMENT No.",
                              " ** ERROR **: JACOBIAN EQUAL OR LESS THEN ZERO FOR ELEMENT No.");
    if constexpr (kDimension<Family> == 1)
        Write(unit, "(A,I10/9X,'R=',D12.5/6X,'DET1=',D12.5)",
              Say(Language, " ** GRESKA **: JAKOBIJAN JEDNAK ILI MANJI OD NULE ZA ELEMENT No. =",
                  " ** ERROR **: JACOBIAN EQUAL OR LESS THEN ZERO FOR ELENMENT No. ="),
              walk.number, place[0], determinant);
    else if constexpr (kDimension<Family> == 2)
        Write(unit, "(A,I10/9X,'R=',D12.5/9X,'S=',D12.5/6X,'DET2=',D12.5)", heading, walk.number, place[0],
              place[1], determinant);
    else
        Write(unit, "(A,I10/6X,'KFIX=',I5/9X,'R=',D12.5/9X,'S=',D12.5/9X,'T=',D12.5/7X,'DET=',D12.5)",
              heading, walk.number, KFIX, place[0], place[1], place[2], determinant);
    StopRun(unit);
}

template <int Family>
void PlaceOfPoint(const ElementWalk<Family>& walk, const ElementPoint<Family>& point, double (&X)[3]) {
    for (int axis = 0; axis < 3; ++axis)
        X[axis] = axis < kDimension<Family>
                      ? Interpolate<0>(point.shape.H, walk.element.CORE[axis], walk.points.active.ND)
                      : 0.0;
}

template <int Family>
void LocateSidePoint(const ElementWalk<Family>& walk, int KFIX, SidePoint<Family>& point) {
    const ActiveNodes& active = walk.points.active;
    const NodeCoordinates<Family>& CORE = walk.element.CORE;
    JacobianValues<Family> jacobian;
    if (!ShapeAndJacobian(point.place, KFIX, walk.run.control.header.NDS, active, CORE, point.shape,
                          jacobian))
        StopOnJacobian(walk, KFIX, point.place, jacobian.DETS);
    point.measure = point.weight * jacobian.DETS;
    if (kDimension<Family> == 2 && walk.axisymmetric)
        point.measure *= Interpolate<0>(point.shape.H, CORE[kEdgeRadiusAxis], active.ND);
}

#define ZURT_ELEMENT_WALK(FAMILY)                                                                            \
    template Word PointsPerElement<FAMILY>(const ElementGroup&);                                             \
    template void BeginWalk(ElementWalk<FAMILY>&, const std::int32_t*, const NodalViews&);                   \
    template void TakeWalkElement(ElementWalk<FAMILY>&, std::int32_t);                                       \
    template void StopOnJacobian(const ElementWalk<FAMILY>&, int, const double*, double);                    \
    template void PlaceOfPoint(const ElementWalk<FAMILY>&, const ElementPoint<FAMILY>&, double(&)[3]);       \
    template void LocateSidePoint(const ElementWalk<FAMILY>&, int, SidePoint<FAMILY>&);
ZURT_FOR_ALL_FAMILIES(ZURT_ELEMENT_WALK)
#undef ZURT_ELEMENT_WALK

} // namespace zurt
