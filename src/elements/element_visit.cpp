#include "elements/element_visit.h"

#include "core/format.h"
#include "elements/group_checks.h"
#include "elements/group_views.h"
#include "elements/jacobian_failure.h"

#include <algorithm>

namespace zurt {

namespace {

void PrintElementLine(Run& run, std::int32_t n) {
    static const Format line("(' ELEMENT....................',I8)");
    Write(run.units.listing, line, n);
}

} // namespace

template <int Dimension> void BeginElementVisit(ElementVisit<Dimension>& visit, const std::int32_t* orders) {
    CheckGroupIndices(visit.run, visit.group);
    visit.NEL = Connectivity(visit.run, visit.group);
    visit.materials = ElementMaterials(visit.run, visit.group);
    visit.nodes = NodalViewsOf(visit.run);
    visit.tables = CoefficientTablesOf(visit.run);
    std::copy(orders, orders + Dimension, visit.NGAUS);
}

template <int Dimension> void TakeElement(ElementVisit<Dimension>& visit, std::int32_t n) {
    visit.number = n;
    if (visit.run.control.header.ITOR == 3)
        PrintElementLine(visit.run, n);
    ActiveNodes active;
    ListActiveNodes<Dimension>(visit.NEL, n, active);
    if (!ServesNodes(visit.points.active, active))
        SetElementPoints(active, visit.NGAUS, visit.points);
    const std::int32_t MATE = visit.materials.length > 0 ? visit.materials(n) : visit.group.MAT;
    if (MATE != visit.material.MATE)
        ChooseMaterial(visit.tables, MATE, visit.group.held, visit.material, visit.coefficients);
    GatherElement<Dimension>(visit.nodes, visit.NEL, n, visit.points.active, visit.element);
}

template <int Dimension>
void StopOnElementJacobian(const ElementVisit<Dimension>& visit, const ElementPoint<Dimension>& at,
                           double DET) {
    TextUnit& unit = MessageUnit(visit.run);
    const int Language = visit.run.control.state.Language;
    if constexpr (Dimension == 1)
        StopOnJacobian1D(unit, Language, visit.number, at.place[0], DET);
    else if constexpr (Dimension == 2)
        StopOnJacobian2D(unit, Language, visit.number, at.place[0], at.place[1], DET);
    else
        StopOnJacobian3D(unit, Language, visit.number, 0, at.place[0], at.place[1], at.place[2], DET);
}

#define ZURT_ELEMENT_VISIT(DIMENSION)                                                                        \
    template void BeginElementVisit(ElementVisit<DIMENSION>&, const std::int32_t*);                          \
    template void TakeElement(ElementVisit<DIMENSION>&, std::int32_t);                                       \
    template void StopOnElementJacobian(const ElementVisit<DIMENSION>&, const ElementPoint<DIMENSION>&,      \
                                        double)
ZURT_ELEMENT_VISIT(1);
ZURT_ELEMENT_VISIT(2);
ZURT_ELEMENT_VISIT(3);

} // namespace zurt
