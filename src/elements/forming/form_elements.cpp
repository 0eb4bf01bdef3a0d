#include "elements/forming/form_elements.h"

#include "core/format.h"
#include "core/stop.h"
#include "elements/forming/brick_kernel.h"
#include "elements/forming/element_fluxes.h"
#include "elements/forming/element_kernel.h"
#include "elements/forming/element_visit.h"
#include "elements/forming/element_work.h"
#include "elements/forming/volume_source.h"
#include "elements/surfaces/surface_terms.h"
#include "geometry/group_views.h"
#include "solver/linear_system.h"

#include <algorithm>

namespace zurt {

namespace {

// For bricks without mid-side nodes: what holds for all of them, and the one in hand.
struct BrickForming {
    InstructionSet instructions = InstructionSet::Portable;
    BrickRule rule;
    BrickValues values;
};

template <int Family> struct FormVisit {
    ElementVisit<Family> elements;
    VolumeSource source{};
    bool transient = false;
    double dt = 0.0;
    ConstRealArray potential{};    // quadrilaterals under ITOR 2, by node; empty: sources stand as they are
    SurfaceTables surfaces{};      // quadrilaterals
    BrickForming* brick = nullptr; // bricks
    RealArray packed{};            // the element matrix that is assembled
    SystemTarget system{};
};

// --- what the families have of their own --------------------------------------------------------------------------

// Under ITOR 2 a source heats by the square of the gradient of the stored potential.
template <int Family, int Nodes>
double SourceAt(const FormVisit<Family>& visit, const JacobianValues<Family>& jacobian, int ND) {
    const double QV = visit.elements.group.held.QV;
    if (kDimension<Family> != 2 || visit.potential.length == 0)
        return QV;
    double squares = 0.0;
    for (int axis = 0; axis < kDimension<Family>; ++axis) {
        double slope = 0.0;
        for (int i = 0; i < ND; ++i)
            slope += jacobian.HX[axis][i] * visit.potential(visit.elements.walk.element.node[i]);
        squares += slope * slope;
    }
    return QV * squares;
}

// --- one element --------------------------------------------------------------------------------------------------

// The sums over the Gauss points of the element in hand; ISRC 0: no load.
template <int Family, int Nodes>
void SumOverPoints(FormVisit<Family>& visit, std::int32_t ISRC, ElementSums<Family, Nodes>& sums) {
    ElementVisit<Family>& elements = visit.elements;
    const Coefficients& coefficients = elements.coefficients;
    const ElementNodes<Family>& element = elements.walk.element;
    const int ND = NodeCount<Nodes>(elements.walk.points.active.ND);
    for (int p = 0; p < elements.rule->count; ++p) {
        const ElementPoint<Family>& point = elements.rule->point[p];
        JacobianValues<Family> jacobian;
        const double w = LocatePoint<Nodes>(elements.walk, point, jacobian);
        const double TG = Interpolate<Nodes>(point.shape.H, element.TE1, ND);
        EvaluateCoefficientsAt(elements, p + 1, TG);
        AddConduction(jacobian.HX, {coefficients.KX, coefficients.KY, coefficients.KZ}, w, ND, sums);
        if (visit.transient)
            AddCapacity(point.shape.H, coefficients.CP, w, ND, sums);
        if (ISRC != 0)
            AddSource(point.shape.H, SourceAt<Family, Nodes>(visit, jacobian, ND), w, ND, sums);
    }
}

// Matrix and right-hand side of the element in hand: volume terms, time term, residual.
template <int Family, int Nodes> void SumElement(FormVisit<Family>& visit, ElementSums<Family, Nodes>& sums) {
    ElementVisit<Family>& elements = visit.elements;
    const ElementNodes<Family>& element = elements.walk.element;
    const int ND = NodeCount<Nodes>(elements.walk.points.active.ND);
    ClearSums(sums, ND);
    const std::int32_t ISRC = ElementSource(elements.run, elements.group, visit.source, elements.walk.number);
    SumOverPoints(visit, ISRC, sums);
    if (visit.transient)
        AddTimeTerm(visit.dt, element.TE0, ND, sums);
    TakeResidual(element.TE1, ND, sums);
}

// The element in hand into the system. (The scaling of the first group by a fibre model belongs ahead of the assembly.)
template <int Family, int Nodes> void FormElement(FormVisit<Family>& visit) {
    ElementVisit<Family>& elements = visit.elements;
    const ElementNodes<Family>& element = elements.walk.element;
    const ActiveNodes& active = elements.walk.points.active;
    const int ND = NodeCount<Nodes>(active.ND);
    ElementSums<Family, Nodes> sums;
    SumElement(visit, sums);
    PackUpper(sums, ND, visit.packed.data);
    if constexpr (kDimension<Family> == 2)
        SurfaceTerms(elements.walk, visit.surfaces, elements.group.held, visit.packed,
                     RealArray(sums.FE, ND));
    AddElement(visit.system, visit.packed, ConstRealArray(sums.FE, ND), ConstIntArray(element.LM, ND), ND);
}

// The residual of the element in hand to the sums of its nodes. Surface terms are added where the caller wants them; they
// need the room of a packed matrix, which is of no use then.
template <int Family, int Nodes>
void AddResidual(FormVisit<Family>& visit, bool withSurfaces, RealArray nodalSums) {
    ElementVisit<Family>& elements = visit.elements;
    const ActiveNodes& active = elements.walk.points.active;
    const int ND = NodeCount<Nodes>(active.ND);
    ElementSums<Family, Nodes> sums;
    SumElement(visit, sums);
    if (withSurfaces) {
        double packed[kMaxNodes<Family> * (kMaxNodes<Family> + 1) / 2];
        PackUpper(sums, ND, packed);
        SurfaceTerms(elements.walk, visit.surfaces, elements.group.held, RealArray(packed, ND * (ND + 1) / 2),
                     RealArray(sums.FE, ND));
    }
    for (int i = 0; i < ND; ++i)
        nodalSums(elements.walk.element.node[i]) += sums.FE[i];
}

// Coefficients and measures of the points of the brick in hand.
void EvaluateBrickPoints(ElementVisit<3>& elements, const BrickRule& rule, BrickValues& brick) {
    Coefficients& coefficients = elements.coefficients;
    const bool atOnce =
        EvaluateDiffusion(elements.tables, elements.material, brick.TG, rule.count, brick.conduction[0]);
    for (int p = 0; p < rule.count; ++p) {
        if (!(brick.DET[p] > kSmallestJacobian))
            StopOnJacobian(elements.walk, 0, elements.walk.points.point[p].place, brick.DET[p]);
        if (atOnce) {
            coefficients.KX = coefficients.KY = coefficients.KZ = brick.conduction[0][p];
            PassThroughFibres(elements, p + 1, brick.TG[p]);
        } else {
            EvaluateCoefficientsAt(elements, p + 1, brick.TG[p]);
        }
        brick.measure[p] = rule.weight[p] * brick.DET[p];
        brick.conduction[0][p] = coefficients.KX;
        brick.conduction[1][p] = coefficients.KY;
        brick.conduction[2][p] = coefficients.KZ;
        brick.CP[p] = coefficients.CP;
    }
}

void AddBrickSource(const BrickRule& rule, double QV, BrickValues& brick) {
    for (int p = 0; p < rule.count; ++p)
        for (int i = 0; i < kBrickNodes; ++i)
            brick.FE[i] += rule.H[p][i] * brick.measure[p] * QV;
}

// What FormElement does, for a brick without mid-side nodes.
void FormBrick(FormVisit<3>& visit) {
    ElementVisit<3>& elements = visit.elements;
    const ElementNodes<3>& element = elements.walk.element;
    const BrickRule& rule = visit.brick->rule;
    BrickValues& brick = visit.brick->values;
    const std::int32_t ISRC = ElementSource(elements.run, elements.group, visit.source, elements.walk.number);
    const ConstIntArray LM(element.LM, kBrickNodes);
    ElementPlaces places;
    LocateElement(visit.system, LM, kBrickNodes, places);
    std::fill(brick.FE, brick.FE + kBrickNodes, 0.0);
    LocateBrickPoints(visit.brick->instructions, rule, element.CORE, element.TE1, brick);
    EvaluateBrickPoints(elements, rule, brick);
    if (ISRC != 0)
        AddBrickSource(rule, elements.group.held.QV, brick);
    SumBrick(visit.brick->instructions, rule, visit.transient, visit.dt, element.TE0, element.TE1, brick,
             visit.packed.data);
    AddLocatedElement(visit.system, places, visit.packed, ConstRealArray(brick.FE, kBrickNodes), LM,
                      kBrickNodes);
}

// --- one group ----------------------------------------------------------------------------------------------------

template <int Family> void BeginFamilyData(FormVisit<Family>& visit) {
    const Run& run = visit.elements.run;
    const ElementGroup& group = visit.elements.group;
    visit.surfaces = SurfaceTablesOf<Family>(run, group);
    if constexpr (kDimension<Family> == 2)
        if (run.control.header.ITOR == 2)
            visit.potential =
                RealSection(run.A, run.control.at.LPOT, run.control.header.PotentialFunctionSize);
}

template <int Family> void BeginFormVisit(FormVisit<Family>& visit) {
    Run& run = visit.elements.run;
    ElementGroup& group = visit.elements.group;
    visit.transient = run.control.header.NSTAC != 0;
    visit.dt = run.clock.TimeStep;
    BeginElementVisit(visit.elements, group.NGAUS);
    BeginFamilyData(visit);
    visit.source = BeginVolumeSource(run, group);
}

void BeginBricks(FormVisit<3>& visit, BrickForming& brick) {
    ActiveNodes corners;
    corners.ND = kBrickNodes;
    ElementPoints<3>& points = visit.elements.walk.points;
    SetElementPoints(corners, visit.elements.walk.NGAUS, points);
    SetBrickRule(points, brick.rule);
    brick.instructions = WidestInstructionSet();
    visit.brick = &brick;
}

// The work block for one visit of the group.
template <int Family> ElementWork BeginGroupVisit(Run& run, const ElementGroup& group) {
    if (kDimension<Family> == 1 && run.control.header.INTEB == 2) {
        TextUnit& unit = BeginMessage(run.units.console);
        Write(unit, "(1X,A)", "NIJE UGRADJENA ALFA INTEGRACIJA");
        StopRun(unit);
    }
    return LayOutElementWork(run, group.NDMAX);
}

template <int Family> void EndGroupVisit(Run& run, const ElementWork& work) {
    if (kDimension<Family> == 2)
        ReleaseFrom(run.A, work.first);
}

template <int Family> void FormCornerElement(FormVisit<Family>& visit) {
    if constexpr (Family == kBrickFamily)
        if (visit.elements.rule == &visit.elements.walk.points)
            return FormBrick(visit);
    FormElement<Family, kCorners<Family>>(visit);
}

} // namespace

template <int Family> void FormElements(Run& run, ElementGroup& group, Word conduction) {
    FormVisit<Family> visit{{run, group}};
    BeginFormVisit(visit);
    visit.packed = RealSection(run.A, conduction, PackedLength(group.NDMAX));
    visit.system = SystemTargetOf(run);
    BrickForming brick;
    if constexpr (Family == kBrickFamily)
        BeginBricks(visit, brick);
    for (std::int32_t n = 1; n <= group.NET; ++n) {
        if (!TakesPart(visit.elements, n))
            continue;
        AnnounceElement(run, n);
        VisitElement(visit.elements, n);
        if (visit.elements.walk.points.active.ND > kCorners<Family>)
            FormElement<Family, 0>(visit);
        else
            FormCornerElement(visit);
    }
}

template <int Family> void FindStiffestElement(Run& run, ElementGroup& group, StiffestElement& stiffest) {
    FormVisit<Family> visit{{run, group}};
    BeginFormVisit(visit);
    for (std::int32_t n = 1; n <= group.NET; ++n) {
        if (!TakesPart(visit.elements, n))
            continue;
        VisitElement(visit.elements, n);
        ElementSums<Family, 0> sums;
        SumElement(visit, sums);
        for (int i = 0; i < visit.elements.walk.points.active.ND; ++i)
            if (sums.K[i][i] > stiffest.entry)
                stiffest = {group.NGE, n, sums.K[i][i]};
    }
}

template <int Family>
void AddElementResiduals(Run& run, ElementGroup& group, ConstIntArray elements, bool withSurfaces,
                         RealArray nodalSums) {
    FormVisit<Family> visit{{run, group}};
    BeginFormVisit(visit);
    for (Word k = 1; k <= elements.length; ++k) {
        if (!TakesPart(visit.elements, elements(k)))
            continue;
        VisitElement(visit.elements, elements(k));
        if (visit.elements.walk.points.active.ND == kCorners<Family>)
            AddResidual<Family, kCorners<Family>>(visit, withSurfaces, nodalSums);
        else
            AddResidual<Family, 0>(visit, withSurfaces, nodalSums);
    }
}

template <int Family> void FormGroup(Run& run, ElementGroup& group) {
    const ElementWork work = BeginGroupVisit<Family>(run, group);
    if (run.control.header.INTEB == 1)
        FormElements<Family>(run, group, work.conduction);
    EndGroupVisit<Family>(run, work);
}

template <int Family> void AddGroupFluxes(Run& run, ElementGroup& group) {
    const ElementWork work = BeginGroupVisit<Family>(run, group);
    if (run.control.header.INTEB == 1)
        AddElementFluxes<Family>(run, group);
    EndGroupVisit<Family>(run, work);
}

#define ZURT_FORM_ELEMENTS(FAMILY)                                                                           \
    template void FormElements<FAMILY>(Run&, ElementGroup&, Word);                                           \
    template void FindStiffestElement<FAMILY>(Run&, ElementGroup&, StiffestElement&);                        \
    template void AddElementResiduals<FAMILY>(Run&, ElementGroup&, ConstIntArray, bool, RealArray);          \
    template void FormGroup<FAMILY>(Run&, ElementGroup&);                                                    \
    template void AddGroupFluxes<FAMILY>(Run&, ElementGroup&);
ZURT_FOR_ALL_FAMILIES(ZURT_FORM_ELEMENTS)
#undef ZURT_FORM_ELEMENTS

} // namespace zurt
