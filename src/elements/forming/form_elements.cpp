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
#include "solver/assembly.h"

#include <algorithm>

namespace zurt {

namespace {

// For bricks without mid-side nodes: what holds for all of them, and the one in hand.
struct BrickForming {
    InstructionSet instructions = InstructionSet::Portable;
    BrickRule rule;
    BrickValues values;
};

template <int Dimension> struct FormVisit {
    ElementVisit<Dimension> elements;
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
template <int Dimension, int Nodes>
double SourceAt(const FormVisit<Dimension>& visit, const JacobianValues<Dimension>& jacobian, int ND) {
    const double QV = visit.elements.group.held.QV;
    if (Dimension != 2 || visit.potential.length == 0)
        return QV;
    double squares = 0.0;
    for (int axis = 0; axis < Dimension; ++axis) {
        double slope = 0.0;
        for (int i = 0; i < ND; ++i)
            slope += jacobian.HX[axis][i] * visit.potential(visit.elements.walk.element.node[i]);
        squares += slope * slope;
    }
    return QV * squares;
}

// --- one element --------------------------------------------------------------------------------------------------

// The sums over the Gauss points of the element in hand; ISRC 0: no load.
template <int Dimension, int Nodes>
void SumOverPoints(FormVisit<Dimension>& visit, std::int32_t ISRC, ElementSums<Dimension, Nodes>& sums) {
    ElementVisit<Dimension>& elements = visit.elements;
    const Coefficients& coefficients = elements.coefficients;
    const ElementNodes<Dimension>& element = elements.walk.element;
    const int ND = NodeCount<Nodes>(elements.walk.points.active.ND);
    for (int p = 0; p < elements.rule->count; ++p) {
        const ElementPoint<Dimension>& point = elements.rule->point[p];
        JacobianValues<Dimension> jacobian;
        const double w = LocatePoint(elements.walk, point, jacobian);
        const double TG = Interpolate<Nodes>(point.shape.H, element.TE1, ND);
        EvaluateCoefficientsAt(elements, p + 1, TG);
        AddConduction(jacobian.HX, {coefficients.KX, coefficients.KY, coefficients.KZ}, w, ND, sums);
        if (visit.transient)
            AddCapacity(point.shape.H, coefficients.CP, w, ND, sums);
        if (ISRC != 0)
            AddSource(point.shape.H, SourceAt<Dimension, Nodes>(visit, jacobian, ND), w, ND, sums);
    }
}

// Matrix and right-hand side of the element in hand: volume terms, time term, residual.
template <int Dimension, int Nodes>
void SumElement(FormVisit<Dimension>& visit, ElementSums<Dimension, Nodes>& sums) {
    ElementVisit<Dimension>& elements = visit.elements;
    const ElementNodes<Dimension>& element = elements.walk.element;
    const int ND = NodeCount<Nodes>(elements.walk.points.active.ND);
    ClearSums(sums, ND);
    const std::int32_t ISRC = ElementSource(elements.run, elements.group, visit.source, elements.walk.number);
    SumOverPoints(visit, ISRC, sums);
    if (visit.transient)
        AddTimeTerm(visit.dt, element.TE0, ND, sums);
    TakeResidual(element.TE1, ND, sums);
}

// The element in hand into the system. (The scaling of the first group by a fibre model belongs ahead of the assembly.)
template <int Dimension, int Nodes> void FormElement(FormVisit<Dimension>& visit) {
    ElementVisit<Dimension>& elements = visit.elements;
    const ElementNodes<Dimension>& element = elements.walk.element;
    const ActiveNodes& active = elements.walk.points.active;
    const int ND = NodeCount<Nodes>(active.ND);
    ElementSums<Dimension, Nodes> sums;
    SumElement(visit, sums);
    PackUpper(sums, ND, visit.packed.data);
    if constexpr (Dimension == 2)
        SurfaceTerms(elements.walk, visit.surfaces, elements.group.held, visit.packed,
                     RealArray(sums.FE, ND));
    AddElement(visit.system, visit.packed, ConstRealArray(sums.FE, ND), ConstIntArray(element.LM, ND), ND);
}

// The residual of the element in hand to the sums of its nodes. Surface terms are added where the caller wants them; they
// need the room of a packed matrix, which is of no use then.
template <int Dimension, int Nodes>
void AddResidual(FormVisit<Dimension>& visit, bool withSurfaces, RealArray nodalSums) {
    ElementVisit<Dimension>& elements = visit.elements;
    const ActiveNodes& active = elements.walk.points.active;
    const int ND = NodeCount<Nodes>(active.ND);
    ElementSums<Dimension, Nodes> sums;
    SumElement(visit, sums);
    if (withSurfaces) {
        double packed[kMaxNodes<Dimension> * (kMaxNodes<Dimension> + 1) / 2];
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
    SkylinePlaces places;
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

template <int Dimension> void BeginFamilyData(FormVisit<Dimension>& visit) {
    const Run& run = visit.elements.run;
    const ElementGroup& group = visit.elements.group;
    visit.surfaces = SurfaceTablesOf<Dimension>(run, group);
    if constexpr (Dimension == 2)
        if (run.control.header.ITOR == 2)
            visit.potential =
                RealSection(run.A, run.control.at.LPOT, run.control.header.PotentialFunctionSize);
}

template <int Dimension> void BeginFormVisit(FormVisit<Dimension>& visit) {
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
template <int Dimension> ElementWork BeginGroupVisit(Run& run, const ElementGroup& group) {
    if (Dimension == 1 && run.control.header.INTEB == 2) {
        TextUnit& unit = BeginMessage(run.units.console);
        Write(unit, "(1X,A)", "NIJE UGRADJENA ALFA INTEGRACIJA");
        StopRun(unit);
    }
    return LayOutElementWork(run, group.NDMAX);
}

template <int Dimension> void EndGroupVisit(Run& run, const ElementWork& work) {
    if (Dimension == 2)
        ReleaseFrom(run.A, work.first);
}

template <int Dimension> void FormCornerElement(FormVisit<Dimension>& visit) {
    if constexpr (Dimension == 3)
        if (visit.elements.rule == &visit.elements.walk.points)
            return FormBrick(visit);
    FormElement<Dimension, kCorners<Dimension>>(visit);
}

} // namespace

template <int Dimension> void FormElements(Run& run, ElementGroup& group, Word conduction) {
    FormVisit<Dimension> visit{{run, group}};
    BeginFormVisit(visit);
    visit.packed = RealSection(run.A, conduction, PackedLength(group.NDMAX));
    visit.system = SystemTargetOf(run);
    BrickForming brick;
    if constexpr (Dimension == 3)
        BeginBricks(visit, brick);
    for (std::int32_t n = 1; n <= group.NET; ++n) {
        if (!TakesPart(visit.elements, n))
            continue;
        AnnounceElement(run, n);
        VisitElement(visit.elements, n);
        if (visit.elements.walk.points.active.ND > kCorners<Dimension>)
            FormElement<Dimension, 0>(visit);
        else
            FormCornerElement(visit);
    }
}

template <int Dimension> void FindStiffestElement(Run& run, ElementGroup& group, StiffestElement& stiffest) {
    FormVisit<Dimension> visit{{run, group}};
    BeginFormVisit(visit);
    for (std::int32_t n = 1; n <= group.NET; ++n) {
        if (!TakesPart(visit.elements, n))
            continue;
        VisitElement(visit.elements, n);
        ElementSums<Dimension, 0> sums;
        SumElement(visit, sums);
        for (int i = 0; i < visit.elements.walk.points.active.ND; ++i)
            if (sums.K[i][i] > stiffest.entry)
                stiffest = {group.NGE, n, sums.K[i][i]};
    }
}

template <int Dimension>
void AddElementResiduals(Run& run, ElementGroup& group, ConstIntArray elements, bool withSurfaces,
                         RealArray nodalSums) {
    FormVisit<Dimension> visit{{run, group}};
    BeginFormVisit(visit);
    for (Word k = 1; k <= elements.length; ++k) {
        if (!TakesPart(visit.elements, elements(k)))
            continue;
        VisitElement(visit.elements, elements(k));
        if (visit.elements.walk.points.active.ND == kCorners<Dimension>)
            AddResidual<Dimension, kCorners<Dimension>>(visit, withSurfaces, nodalSums);
        else
            AddResidual<Dimension, 0>(visit, withSurfaces, nodalSums);
    }
}

template void AddElementResiduals<1>(Run&, ElementGroup&, ConstIntArray, bool, RealArray);
template void AddElementResiduals<2>(Run&, ElementGroup&, ConstIntArray, bool, RealArray);
template void AddElementResiduals<3>(Run&, ElementGroup&, ConstIntArray, bool, RealArray);

template void FindStiffestElement<1>(Run&, ElementGroup&, StiffestElement&);
template void FindStiffestElement<2>(Run&, ElementGroup&, StiffestElement&);
template void FindStiffestElement<3>(Run&, ElementGroup&, StiffestElement&);

template void FormElements<1>(Run&, ElementGroup&, Word);
template void FormElements<2>(Run&, ElementGroup&, Word);
template void FormElements<3>(Run&, ElementGroup&, Word);

template <int Dimension> void FormGroup(Run& run, ElementGroup& group) {
    const ElementWork work = BeginGroupVisit<Dimension>(run, group);
    if (run.control.header.INTEB == 1)
        FormElements<Dimension>(run, group, work.conduction);
    EndGroupVisit<Dimension>(run, work);
}

template <int Dimension> void AddGroupFluxes(Run& run, ElementGroup& group) {
    const ElementWork work = BeginGroupVisit<Dimension>(run, group);
    if (run.control.header.INTEB == 1)
        AddElementFluxes<Dimension>(run, group);
    EndGroupVisit<Dimension>(run, work);
}

template void FormGroup<1>(Run&, ElementGroup&);
template void FormGroup<2>(Run&, ElementGroup&);
template void FormGroup<3>(Run&, ElementGroup&);

template void AddGroupFluxes<1>(Run&, ElementGroup&);
template void AddGroupFluxes<2>(Run&, ElementGroup&);
template void AddGroupFluxes<3>(Run&, ElementGroup&);

} // namespace zurt
