#include "elements/forming/element_visit.h"

#include "core/format.h"
#include "elements/cards/group_checks.h"
#include "geometry/group_views.h"
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
template <int Family> std::int32_t CutNumberOf(const ElementVisit<Family>& visit) {
    const FibreGroup& fibres = *visit.fibres;
    if (!visit.integrates || fibres.cutRecords.empty() || visit.run.fit.IEHM != 0)
        return 0;
    return fibres.cutNumber[static_cast<std::size_t>(visit.walk.number - 1)];
}

// The rule of the elements that a wall cuts, for those with the nodes of the element in hand.
template <int Family> void SetCutPoints(ElementVisit<Family>& visit) {
    std::int32_t orders[kDimension<Family>];
    std::fill(orders, orders + kDimension<Family>, CondensedOrder<Family>(visit.group.NDMAX));
    SetElementPoints(visit.walk.points.active, orders, visit.cutPoints);
}

// Records of the forming visits, or of the fluxes where their rule is another one.
template <int Family> void TakeFibreRecords(ElementVisit<Family>& visit) {
    const FibreGroup& fibres = *visit.fibres;
    const std::int32_t cut = CutNumberOf(visit);
    if (cut != 0) {
        visit.atPoints = {EntriesOf(fibres.cutRecords, cut, fibres.cutPoints),
                          EntriesOf(fibres.cutShares, cut, fibres.cutPoints)};
        if (!ServesNodes(visit.cutPoints.active, visit.walk.points.active))
            SetCutPoints(visit);
        visit.rule = &visit.cutPoints;
        return;
    }
    const bool own = std::equal(visit.walk.NGAUS, visit.walk.NGAUS + kDimension<Family>, visit.group.NGAUS);
    visit.atPoints = {
        EntriesOf(own ? fibres.records : fibres.fluxRecords, visit.walk.number, visit.walk.points.count), {}};
}

} // namespace

void ForgetVisits(Run& run, std::int32_t NGE) {
    run.visits.held[NGE] = HeldCurveValues();
    run.visits.checked[NGE] = false;
}

void CheckGroupOnce(Run& run, const ElementGroup& group) {
    bool& checked = run.visits.checked[group.NGE];
    if (!checked)
        CheckGroupCards(run, group);
    checked = true;
}

template <int Family> void BeginElementVisit(ElementVisit<Family>& visit, const std::int32_t* orders) {
    CheckGroupOnce(visit.run, visit.group);
    JoinElementVisit(visit, orders);
}

template <int Family> void JoinElementVisit(ElementVisit<Family>& visit, const std::int32_t* orders) {
    BeginWalk(visit.walk, orders, NodalViewsOf(visit.run));
    visit.materials = ElementMaterials(visit.run, visit.group);
    visit.tables = CoefficientTablesOf(visit.run, visit.group);
    if (!kUnderFibres<Family> || visit.run.fit.card.NSETS < 1)
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

template <int Family> void AnnounceOtherElements(const ElementVisit<Family>& visit, Word next) {
    if (visit.run.control.header.ITOR != 3)
        return;
    for (auto n = static_cast<std::int32_t>(next); n <= visit.group.NET; ++n)
        if (TakesPart(visit, n))
            AnnounceElement(visit.run, n);
}

template <int Family> void VisitElement(ElementVisit<Family>& visit, std::int32_t n) {
    TakeWalkElement(visit.walk, n);
    visit.rule = &visit.walk.points;
    if constexpr (kUnderFibres<Family>)
        if (visit.fibres != nullptr)
            TakeFibreRecords(visit);
    const std::int32_t MATE = visit.materials.length > 0 ? visit.materials(n) : visit.group.MAT;
    if (MATE != visit.material.MATE)
        ChooseMaterial(visit.tables, MATE, *visit.held, visit.material, visit.coefficients);
}

template <int Family> void MultiplyByFibreFactors(ElementVisit<Family>& visit, int p, double TG) {
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

#define ZURT_ELEMENT_VISIT(FAMILY)                                                                           \
    template void BeginElementVisit(ElementVisit<FAMILY>&, const std::int32_t*);                             \
    template void JoinElementVisit(ElementVisit<FAMILY>&, const std::int32_t*);                              \
    template void AnnounceOtherElements(const ElementVisit<FAMILY>&, Word);                                  \
    template void VisitElement(ElementVisit<FAMILY>&, std::int32_t);                                         \
    template void MultiplyByFibreFactors(ElementVisit<FAMILY>&, int, double);
ZURT_FOR_ALL_FAMILIES(ZURT_ELEMENT_VISIT)
#undef ZURT_ELEMENT_VISIT

} // namespace zurt
