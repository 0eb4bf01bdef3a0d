#include "elements/forming/element_visit.h"

#include "core/format.h"
#include "elements/cards/group_checks.h"
#include "geometry/group_views.h"
#include "geometry/jacobian_failure.h"
#include "microscale/gauss_factors.h"
#include "microscale/wall_cells.h"

#include <algorithm>
#include <cmath>

namespace zurt {

namespace {

// The entries of element n among those of all elements.
template <class T> ArrayView<const T> EntriesOf(const std::vector<T>& all, Word n, Word perElement) {
    return Section(ArrayView<const T>(all.data(), static_cast<Word>(all.size())), (n - 1) * perElement + 1,
                   perElement);
}

// The medium has no walls, whose elements need no rule of their own.
template <int Dimension> std::int32_t CutNumberOf(const ElementVisit<Dimension>& visit) {
    const FibreGroup& fibres = *visit.fibres;
    if (!visit.integrates || fibres.cutRecords.empty() || visit.run.fit.IEHM != 0)
        return 0;
    return fibres.cutNumber[static_cast<std::size_t>(visit.number - 1)];
}

// Records of the forming visits, or of the fluxes where their rule is another one.
template <int Dimension> void TakeFibreRecords(ElementVisit<Dimension>& visit) {
    const FibreGroup& fibres = *visit.fibres;
    const std::int32_t cut = CutNumberOf(visit);
    if (cut != 0) {
        visit.atPoints = {EntriesOf(fibres.cutRecords, cut, fibres.cutPoints),
                          EntriesOf(fibres.cutShares, cut, fibres.cutPoints)};
        visit.rule = &visit.cutPoints;
        return;
    }
    const bool own = std::equal(visit.NGAUS, visit.NGAUS + Dimension, visit.group.NGAUS);
    visit.atPoints = {EntriesOf(own ? fibres.records : fibres.fluxRecords, visit.number, visit.points.count),
                      {}};
}

} // namespace

template <int Dimension> void SetVisitPoints(ElementVisit<Dimension>& visit, const ActiveNodes& active) {
    SetElementPoints(active, visit.NGAUS, visit.points);
    if (visit.fibres == nullptr || visit.fibres->cutRecords.empty())
        return;
    if constexpr (Dimension > 1) {
        std::int32_t orders[Dimension];
        std::fill(orders, orders + Dimension, CondensedOrder<Dimension>(visit.group.NDMAX));
        SetElementPoints(active, orders, visit.cutPoints);
    }
}

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
    visit.skipsElements = fit.IEHM == 0;
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
        SetVisitPoints(visit, active);
    visit.rule = &visit.points;
    if (Dimension > 1 && visit.fibres != nullptr)
        TakeFibreRecords(visit);
    const std::int32_t MATE = visit.materials.length > 0 ? visit.materials(n) : visit.group.MAT;
    if (MATE != visit.material.MATE)
        ChooseMaterial(visit.tables, MATE, visit.group.held, visit.material, visit.coefficients);
    GatherElement<Dimension>(visit.nodes, visit.NEL, n, visit.points.active, visit.element);
}

template <int Dimension>
void StopOnElementJacobian(const ElementVisit<Dimension>& visit, const ElementPoint<Dimension>& at,
                           double DET) {
    TextUnit& unit = MessageUnit(visit.run);
    const int Language = visit.run.job.Language;
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
    GaussFactors(run.fibres, run.fit, direct, visit.atPoints.records(p), std::fabs(TG), factor);
    if (visit.atPoints.shares.length > 0)
        MixWithFibre(visit.atPoints.shares(p), factor);
    visit.coefficients.KX *= factor[0];
    visit.coefficients.KY *= factor[1];
    visit.coefficients.KZ *= factor[2];
}

#define ZURT_ELEMENT_VISIT(DIMENSION)                                                                        \
    template void BeginElementVisit(ElementVisit<DIMENSION>&, const std::int32_t*);                          \
    template void SetVisitPoints(ElementVisit<DIMENSION>&, const ActiveNodes&);                              \
    template void TakeElement(ElementVisit<DIMENSION>&, std::int32_t);                                       \
    template void MultiplyByFibreFactors(ElementVisit<DIMENSION>&, int, double);                             \
    template void StopOnElementJacobian(const ElementVisit<DIMENSION>&, const ElementPoint<DIMENSION>&,      \
                                        double)
ZURT_ELEMENT_VISIT(1);
ZURT_ELEMENT_VISIT(2);
ZURT_ELEMENT_VISIT(3);

} // namespace zurt
