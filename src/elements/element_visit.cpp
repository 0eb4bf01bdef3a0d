#include "elements/element_visit.h"

#include "core/format.h"
#include "elements/group_checks.h"
#include "elements/group_views.h"
#include "elements/jacobian_failure.h"
#include "microscale/gauss_factors.h"

#include <algorithm>
#include <cmath>

namespace zurt {

namespace {

// Of the forming visits, or of the fluxes where their rule is another one.
template <int Dimension> void TakeFibreRecords(ElementVisit<Dimension>& visit) {
    const bool own = std::equal(visit.NGAUS, visit.NGAUS + Dimension, visit.group.NGAUS);
    const std::vector<GaussFibreRecord>& records = own ? visit.fibres->records : visit.fibres->fluxRecords;
    visit.fibreRecords = {records.data(), static_cast<Word>(records.size())};
    visit.pointsPerElement = 1;
    for (const std::int32_t order : visit.NGAUS)
        visit.pointsPerElement *= order;
}

} // namespace

template <int Dimension> void BeginElementVisit(ElementVisit<Dimension>& visit, const std::int32_t* orders) {
    CheckGroupIndices(visit.run, visit.group);
    visit.NEL = Connectivity(visit.run, visit.group);
    visit.materials = ElementMaterials(visit.run, visit.group);
    visit.nodes = NodalViewsOf(visit.run);
    visit.tables = CoefficientTablesOf(visit.run, visit.group);
    std::copy(orders, orders + Dimension, visit.NGAUS);
    if (Dimension == 1 || visit.run.fit.card.NSETS < 1)
        return;
    if (visit.tables.tabulated) // fibres are in the table
        return;
    const FitState& fit = visit.run.fit;
    visit.fibres = &visit.run.fibres.groups[static_cast<std::size_t>(visit.group.NGE)];
    visit.skipsElements = fit.card.IEHM == 0;
    TakeFibreRecords(visit);
}

void AnnounceElement(Run& run, std::int32_t n) {
    static const Format line("(' ELEMENT....................',I8)");
    if (run.control.header.ITOR == 3)
        Write(run.units.listing, line, n);
}

template <int Dimension> void TakeElement(ElementVisit<Dimension>& visit, std::int32_t n) {
    visit.number = n;
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

template <int Dimension> void MultiplyByFibreFactors(ElementVisit<Dimension>& visit, int p, double TG) {
    double factor[3] = {1.0, 1.0, 1.0};
    const Run& run = visit.run;
    const bool direct = run.control.header.IDIRECTD == 1;
    const Word at = (visit.number - 1) * visit.pointsPerElement + p;
    GaussFactors(run.fibres, run.fit, direct, visit.fibreRecords(at), std::fabs(TG), factor);
    visit.coefficients.KX *= factor[0];
    visit.coefficients.KY *= factor[1];
    visit.coefficients.KZ *= factor[2];
}

#define ZURT_ELEMENT_VISIT(DIMENSION)                                                                        \
    template void BeginElementVisit(ElementVisit<DIMENSION>&, const std::int32_t*);                          \
    template void TakeElement(ElementVisit<DIMENSION>&, std::int32_t);                                       \
    template void MultiplyByFibreFactors(ElementVisit<DIMENSION>&, int, double);                             \
    template void StopOnElementJacobian(const ElementVisit<DIMENSION>&, const ElementPoint<DIMENSION>&,      \
                                        double)
ZURT_ELEMENT_VISIT(1);
ZURT_ELEMENT_VISIT(2);
ZURT_ELEMENT_VISIT(3);

} // namespace zurt
