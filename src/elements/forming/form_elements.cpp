#include "elements/forming/form_elements.h"

#include "core/format.h"
#include "core/ranks.h"
#include "core/stop.h"
#include "elements/forming/brick_kernel.h"
#include "elements/forming/element_fluxes.h"
#include "elements/forming/element_kernel.h"
#include "elements/forming/element_pieces.h"
#include "elements/forming/element_visit.h"
#include "elements/forming/element_work.h"
#include "elements/forming/volume_source.h"
#include "elements/surfaces/surface_terms.h"
#include "geometry/group_views.h"
#include "solver/linear_system.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace zurt {

namespace {

// For bricks without mid-side nodes: what holds for all of them, and the one in hand.
struct BrickForming {
    InstructionSet instructions = InstructionSet::Portable;
    BrickRule rule;
    BrickValues values;
};

// What all workers of a visit read.
struct FormTables {
    VolumeSource source{};
    bool transient = false;
    double dt = 0.0;
    ConstRealArray potential{}; // quadrilaterals under ITOR 2, by node; empty: sources stand as they are
    SurfaceTables surfaces{};   // quadrilaterals
    SystemTarget system{};
};

// What forming an element gives, besides its matrix.
template <int Family> struct FormedElement {
    std::int32_t ND = 0; // nodes; 0: it takes no part
    std::int32_t LM[kMaxNodes<Family>];
    double FE[kMaxNodes<Family>];
    ElementPlaces places;
};

template <int Family> struct FormVisit {
    ElementVisit<Family> elements;
    FormTables tables{};
    BrickForming* brick = nullptr; // bricks
    RealArray packed{};            // the element matrix that is assembled
    FormedElement<Family>* formed = nullptr;
};

// --- what the families have of their own --------------------------------------------------------------------------

// Under ITOR 2 a source heats by the square of the gradient of the stored potential.
template <int Family, int Nodes>
double SourceAt(const FormVisit<Family>& visit, const JacobianValues<Family>& jacobian, int ND) {
    const double QV = visit.elements.held->QV;
    if (kDimension<Family> != 2 || visit.tables.potential.length == 0)
        return QV;
    double squares = 0.0;
    for (int axis = 0; axis < kDimension<Family>; ++axis) {
        double slope = 0.0;
        for (int i = 0; i < ND; ++i)
            slope += jacobian.HX[axis][i] * visit.tables.potential(visit.elements.walk.element.node[i]);
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
        if (visit.tables.transient)
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
    const std::int32_t ISRC =
        ElementSource(elements.run, visit.tables.source, elements.walk.number, *elements.held);
    SumOverPoints(visit, ISRC, sums);
    if (visit.tables.transient)
        AddTimeTerm(visit.tables.dt, element.TE0, ND, sums);
    TakeResidual(element.TE1, ND, sums);
}

// The element in hand, ready for the system. (The scaling of the first group by a fibre model belongs ahead of the
// assembly.)
template <int Family, int Nodes> void FormElement(FormVisit<Family>& visit) {
    ElementVisit<Family>& elements = visit.elements;
    FormedElement<Family>& formed = *visit.formed;
    const int ND = NodeCount<Nodes>(elements.walk.points.active.ND);
    ElementSums<Family, Nodes> sums;
    SumElement(visit, sums);
    PackUpper(sums, ND, visit.packed.data);
    if constexpr (kDimension<Family> == 2)
        SurfaceTerms(elements.walk, visit.tables.surfaces, *elements.held, visit.packed,
                     RealArray(sums.FE, ND));
    formed.ND = ND;
    formed.places.count = 0;
    for (int i = 0; i < ND; ++i) {
        formed.FE[i] = sums.FE[i];
        formed.LM[i] = elements.walk.element.LM[i];
    }
}

// Adds the residual of the element in hand to the sums of its nodes. Surface terms are added where the caller wants them; they
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
        SurfaceTerms(elements.walk, visit.tables.surfaces, *elements.held,
                     RealArray(packed, ND * (ND + 1) / 2), RealArray(sums.FE, ND));
    }
    for (int i = 0; i < ND; ++i)
        nodalSums(elements.walk.element.node[i]) += sums.FE[i];
}

// Capacity terms of the element in hand, whose C/dt is mirrored: what it stores, and how fast that grows.
template <int Family, int Nodes>
void AddStored(const FormVisit<Family>& visit, const ElementSums<Family, Nodes>& sums,
               ElementBalance& balance) {
    const ElementNodes<Family>& element = visit.elements.walk.element;
    const int ND = NodeCount<Nodes>(visit.elements.walk.points.active.ND);
    double stored = 0.0, storing = 0.0;
    for (int i = 0; i < ND; ++i)
        for (int j = 0; j < ND; ++j) {
            stored += sums.C[i][j] * element.TE1[j];
            storing += sums.C[i][j] * (element.TE1[j] - element.TE0[j]);
        }
    const std::int32_t MATE = visit.elements.material.MATE;
    balance.stored(MATE) += stored * visit.tables.dt;
    balance.storing(MATE) += storing;
    balance.moved += std::fabs(storing);
}

// Quadrilaterals alone have surface terms. Their matrix is of no use here.
template <int Family> void AddSurfacePart(FormVisit<Family>& visit, ElementBalance& balance) {
    const ElementNodes<Family>& element = visit.elements.walk.element;
    const int ND = visit.elements.walk.points.active.ND;
    double packed[kMaxNodes<Family> * (kMaxNodes<Family> + 1) / 2] = {}, FE[kMaxNodes<Family>] = {};
    SurfaceTerms(visit.elements.walk, visit.tables.surfaces, *visit.elements.held,
                 RealArray(packed, Word{ND} * (ND + 1) / 2), RealArray(FE, ND));
    for (int i = 0; i < ND; ++i)
        balance.residual(element.node[i]) += FE[i];
}

template <int Family, int Nodes>
void AddBalance(FormVisit<Family>& visit, bool isListed, ElementBalance& balance) {
    ElementVisit<Family>& elements = visit.elements;
    const ElementNodes<Family>& element = elements.walk.element;
    const int ND = NodeCount<Nodes>(elements.walk.points.active.ND);
    ElementSums<Family, Nodes> sums;
    ClearSums(sums, ND);
    SumOverPoints(
        visit, ElementSource(elements.run, visit.tables.source, elements.walk.number, *elements.held), sums);
    double source = 0.0;
    for (int i = 0; i < ND; ++i)
        source += sums.FE[i];
    balance.sources += source;
    balance.moved += std::fabs(source);
    if (visit.tables.transient) {
        AddTimeTerm(visit.tables.dt, element.TE0, ND, sums);
        AddStored<Family, Nodes>(visit, sums, balance);
    }
    TakeResidual(element.TE1, ND, sums);
    for (int i = 0; i < ND; ++i) {
        balance.residual(element.node[i]) += sums.FE[i];
        if (isListed)
            balance.volumePart(element.node[i]) += sums.FE[i];
    }
    if constexpr (kDimension<Family> == 2)
        AddSurfacePart(visit, balance);
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
    FormedElement<3>& formed = *visit.formed;
    const ElementNodes<3>& element = elements.walk.element;
    const BrickRule& rule = visit.brick->rule;
    BrickValues& brick = visit.brick->values;
    const std::int32_t ISRC =
        ElementSource(elements.run, visit.tables.source, elements.walk.number, *elements.held);
    LocateElement(visit.tables.system, ConstIntArray(element.LM, kBrickNodes), kBrickNodes, formed.places);
    std::fill(brick.FE, brick.FE + kBrickNodes, 0.0);
    LocateBrickPoints(visit.brick->instructions, rule, element.CORE, element.TE1, brick);
    EvaluateBrickPoints(elements, rule, brick);
    if (ISRC != 0)
        AddBrickSource(rule, elements.held->QV, brick);
    SumBrick(visit.brick->instructions, rule, visit.tables.transient, visit.tables.dt, element.TE0,
             element.TE1, brick, visit.packed.data);
    formed.ND = kBrickNodes;
    std::copy(brick.FE, brick.FE + kBrickNodes, formed.FE);
    std::copy(element.LM, element.LM + kBrickNodes, formed.LM);
}

// An element that was formed into the system.
template <int Family>
void AddFormed(const SystemTarget& system, ConstRealArray packed, FormedElement<Family>& formed) {
    if (formed.ND > 0)
        AddLocatedElement(system, formed.places, packed, ConstRealArray(formed.FE, formed.ND),
                          ConstIntArray(formed.LM, formed.ND), formed.ND);
}

// --- one group ----------------------------------------------------------------------------------------------------

template <int Family> void BeginFamilyData(FormVisit<Family>& visit) {
    const Run& run = visit.elements.run;
    const ElementGroup& group = visit.elements.group;
    visit.tables.surfaces = SurfaceTablesOf<Family>(run, group);
    if constexpr (kDimension<Family> == 2)
        if (run.control.header.ITOR == 2)
            visit.tables.potential =
                RealSection(run.A, run.control.at.LPOT, run.control.header.PotentialFunctionSize);
}

template <int Family> void BeginFormVisit(FormVisit<Family>& visit) {
    Run& run = visit.elements.run;
    const ElementGroup& group = visit.elements.group;
    visit.tables.transient = run.control.header.NSTAC != 0;
    visit.tables.dt = run.clock.TimeStep;
    BeginElementVisit(visit.elements, group.NGAUS);
    BeginFamilyData(visit);
    visit.tables.source = BeginVolumeSource(run, group);
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

// Element n, into `formed` and `packed`.
template <int Family> void FormNumber(FormVisit<Family>& visit, std::int32_t n) {
    visit.formed->ND = 0;
    visit.formed->places.number = n;
    if (!TakesPart(visit.elements, n))
        return;
    AnnounceElement(visit.elements.run, n);
    VisitElement(visit.elements, n);
    if (visit.elements.walk.points.active.ND > kCorners<Family>)
        FormElement<Family, 0>(visit);
    else
        FormCornerElement(visit);
}

// A worker's visit, with room for so many elements.
template <int Family, Word Elements> struct WorkerFormVisit : FormVisit<Family> {
    WorkerFormVisit(Run& run, const ElementGroup& group) : FormVisit<Family>{{run, group}} {}
    BrickForming ownBrick;
    FormedElement<Family> room[static_cast<std::size_t>(Elements)];
    std::vector<double> matrices; // packed, one behind the other
};

template <int Family, Word Elements>
void BeginWorkerVisit(const FormVisit<Family>& begun, WorkerFormVisit<Family, Elements>& visit) {
    const ElementGroup& group = begun.elements.group;
    JoinElementVisit(visit.elements, group.NGAUS);
    visit.tables = begun.tables;
    if constexpr (Family == kBrickFamily)
        BeginBricks(visit, visit.ownBrick);
    visit.matrices.resize(static_cast<std::size_t>(Elements * PackedLength(group.NDMAX)));
}

// The element that follows goes to this place in the room, from 0.
template <int Family, Word Elements>
void UseRoom(WorkerFormVisit<Family, Elements>& visit, std::size_t place) {
    const Word length = PackedLength(visit.elements.group.NDMAX);
    visit.formed = &visit.room[place];
    visit.packed = RealArray(visit.matrices.data() + static_cast<Word>(place) * length, length);
}

// FormNumber for a worker.
template <int Family> void FormBeside(FormVisit<Family>& visit, std::int32_t n) {
    FormNumber(visit, n);
    const std::int32_t ND = visit.formed->ND;
    if (visit.elements.run.workers.sideBySide) {
        RequireNumbers(visit.formed->FE, ND);
        if (kDimension<Family> ==
            2) // surface terms; volume terms that aren't numbers are in every residual too
            RequireNumbers(visit.packed.data, PackedLength(ND));
    }
}

// For a system that takes elements in their order alone.
template <int Family> void FormInTurn(const FormVisit<Family>& begun) {
    using Visit = WorkerFormVisit<Family, kChunkElements>;
    const auto begin = [&](Visit& visit) { BeginWorkerVisit(begun, visit); };
    const auto compute = [&](Visit& visit, std::int32_t n, std::size_t place) {
        UseRoom(visit, place);
        FormBeside(visit, n);
    };
    const auto add = [&](Visit& visit, std::int32_t, std::size_t place) {
        UseRoom(visit, place);
        AddFormed(begun.tables.system, visit.packed, *visit.formed);
    };
    ElementsInTurn<Visit>(begun.elements.run, begun.elements.group, begun.tables.source.oneFunction, begin,
                          compute, add);
}

template <int Family> void FormInPieces(const FormVisit<Family>& begun) {
    using Visit = WorkerFormVisit<Family, 1>;
    const SystemTarget& system = begun.tables.system;
    const auto begin = [&](Visit& visit) {
        BeginWorkerVisit(begun, visit);
        UseRoom(visit, 0);
    };
    const auto form = [](Visit& visit, std::int32_t n) { FormBeside(visit, n); };
    const auto addBeside = [&](Visit& visit, ElementPiece& piece) {
        FormedElement<Family>& formed = *visit.formed;
        bool shared[kMaxNodes<Family>];
        for (int i = 0; i < formed.ND; ++i)
            shared[i] = IsTouched(piece, formed.LM[i]);
        if (formed.ND > 0)
            AddElementBeside(system, formed.places, visit.packed, ConstRealArray(formed.FE, formed.ND),
                             ConstIntArray(formed.LM, formed.ND), formed.ND, shared, piece.deferred);
    };
    const auto add = [&](Visit& visit) { AddFormed(system, visit.packed, *visit.formed); };
    ElementsInPieces<Visit>(begun.elements.run, begun.elements.group, begun.elements.walk.NEL,
                            begun.tables.source.oneFunction, begin, form, addBeside, add);
}

} // namespace

template <int Family> void FormElements(Run& run, const ElementGroup& group, Word conduction) {
    FormVisit<Family> visit{{run, group}};
    BeginFormVisit(visit);
    visit.tables.system = SystemTargetOf(run);
    NumberElements(visit.tables.system, group.NET, group.NDMAX);
    if (SharesElements(run, group))
        return AddsSideBySide(visit.tables.system) ? FormInPieces(visit) : FormInTurn(visit);
    FormedElement<Family> formed;
    visit.formed = &formed;
    visit.packed = RealSection(run.A, conduction, PackedLength(group.NDMAX));
    BrickForming brick;
    if constexpr (Family == kBrickFamily)
        BeginBricks(visit, brick);
    const Share share = ShareOf(group.NET);
    for (auto n = static_cast<std::int32_t>(share.first); n <= share.last; ++n) {
        FormNumber(visit, n);
        AddFormed(visit.tables.system, visit.packed, formed);
    }
    AnnounceOtherElements(visit.elements, share.last + 1);
}

template <int Family>
void FindStiffestElement(Run& run, const ElementGroup& group, StiffestElement& stiffest) {
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
void AddElementResiduals(Run& run, const ElementGroup& group, ConstIntArray elements, bool withSurfaces,
                         RealArray nodalSums) {
    FormVisit<Family> visit{{run, group}};
    BeginFormVisit(visit);
    const Share share = ShareOf(elements.length);
    for (Word k = share.first; k <= share.last; ++k) {
        if (!TakesPart(visit.elements, elements(k)))
            continue;
        VisitElement(visit.elements, elements(k));
        if (visit.elements.walk.points.active.ND == kCorners<Family>)
            AddResidual<Family, kCorners<Family>>(visit, withSurfaces, nodalSums);
        else
            AddResidual<Family, 0>(visit, withSurfaces, nodalSums);
    }
}

template <int Family> void AddElementBalance(Run& run, const ElementGroup& group, ElementBalance& balance) {
    const HeldCurveValues held = run.visits.held[group.NGE];
    FormVisit<Family> visit{{run, group}};
    BeginFormVisit(visit);
    visit.elements.walk.nodes.solutionRead = visit.tables.surfaces.nonlinear = true;
    visit.tables.surfaces.flows = &balance.surfaces;
    Word listed = 1;
    for (std::int32_t n = 1; n <= group.NET; ++n) {
        const bool isListed = listed <= balance.listed.length && balance.listed(listed) == n;
        listed += isListed;
        if (!TakesPart(visit.elements, n))
            continue;
        VisitElement(visit.elements, n);
        if (visit.elements.walk.points.active.ND == kCorners<Family>)
            AddBalance<Family, kCorners<Family>>(visit, isListed, balance);
        else
            AddBalance<Family, 0>(visit, isListed, balance);
    }
    run.visits.held[group.NGE] = held;
}

template <int Family> void FormGroup(Run& run, const ElementGroup& group) {
    const ElementWork work = BeginGroupVisit<Family>(run, group);
    if (run.control.header.INTEB == 1)
        FormElements<Family>(run, group, work.conduction);
    EndGroupVisit<Family>(run, work);
}

template <int Family> void AddGroupFluxes(Run& run, const ElementGroup& group) {
    const ElementWork work = BeginGroupVisit<Family>(run, group);
    if (run.control.header.INTEB == 1)
        AddElementFluxes<Family>(run, group);
    EndGroupVisit<Family>(run, work);
}

#define ZURT_FORM_ELEMENTS(FAMILY)                                                                           \
    template void FormElements<FAMILY>(Run&, const ElementGroup&, Word);                                     \
    template void FindStiffestElement<FAMILY>(Run&, const ElementGroup&, StiffestElement&);                  \
    template void AddElementResiduals<FAMILY>(Run&, const ElementGroup&, ConstIntArray, bool, RealArray);    \
    template void AddElementBalance<FAMILY>(Run&, const ElementGroup&, ElementBalance&);                     \
    template void FormGroup<FAMILY>(Run&, const ElementGroup&);                                              \
    template void AddGroupFluxes<FAMILY>(Run&, const ElementGroup&);
ZURT_FOR_ALL_FAMILIES(ZURT_FORM_ELEMENTS)
#undef ZURT_FORM_ELEMENTS

} // namespace zurt
