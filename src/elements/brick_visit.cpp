#include "elements/brick_visit.h"

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

void BeginBrickVisit(BrickVisit& visit, const std::int32_t (&NGAUS)[3]) {
    CheckGroupIndices(visit.run, visit.group);
    visit.NEL = Connectivity(visit.run, visit.group);
    visit.materials = ElementMaterials(visit.run, visit.group);
    visit.nodes = NodalViewsOf(visit.run);
    visit.tables = CoefficientTablesOf(visit.run);
    std::copy(NGAUS, NGAUS + 3, visit.NGAUS);
}

void TakeBrick(BrickVisit& visit, std::int32_t n) {
    visit.number = n;
    if (visit.run.control.header.ITOR == 3)
        PrintElementLine(visit.run, n);
    ActiveNodes active;
    ListActiveNodes<3>(visit.NEL, n, active);
    if (!ServesNodes(visit.points, active))
        SetBrickPoints(active, visit.NGAUS, visit.points);
    const std::int32_t MATE = visit.materials.length > 0 ? visit.materials(n) : visit.group.MAT;
    if (MATE != visit.material.MATE)
        ChooseMaterial(visit.tables, MATE, visit.group.held, visit.material, visit.coefficients);
    GatherElement<3>(visit.nodes, visit.NEL, n, visit.points.active, visit.element);
}

void StopOnBrickJacobian(const BrickVisit& visit, const BrickPoint& at, double DET) {
    StopOnJacobian3D(MessageUnit(visit.run), visit.run.control.state.Language, visit.number, 0, at.place[0],
                     at.place[1], at.place[2], DET);
}

} // namespace zurt
