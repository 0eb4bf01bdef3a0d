#include "elements/form_3d.h"

#include "elements/brick_kernel.h"
#include "elements/brick_visit.h"
#include "elements/element_work.h"
#include "elements/flux_3d.h"
#include "elements/volume_source.h"
#include "solver/skyline_assembly.h"

namespace zurt {

namespace {

struct FormVisit {
    BrickVisit brick;
    VolumeSource source{};
    bool transient = false;
    double dt = 0.0;
    RealArray packed{}; // the element matrix that is assembled
    RealArray SkylineMatrix{}, R{};
    ConstIntArray MAXA{};
    std::int32_t matrixFlag = 0;
};

// Step 9: the sums over the Gauss points of the element in hand; ISRC 0: no load.
template <int Nodes> void SumOverPoints(FormVisit& visit, std::int32_t ISRC, BrickSums<Nodes>& sums) {
    BrickVisit& brick = visit.brick;
    HeldCurveValues& held = brick.group.held;
    Coefficients& coefficients = brick.coefficients;
    const ElementNodes<3>& element = brick.element;
    const int ND = NodeCount<Nodes>(brick.points.active.ND);
    for (int p = 0; p < brick.points.count; ++p) {
        const BrickPoint& point = brick.points.point[p];
        JacobianValues<3> jacobian;
        if (!JacobianVolume<3>(point.shape, element.CORE, ND, jacobian))
            StopOnBrickJacobian(brick, point, jacobian.DET);
        const double TG = Interpolate<Nodes>(point.shape.H, element.TE1, ND);
        CoefficientFailure failure;
        if (!EvaluateCoefficients(brick.tables, brick.material, TG, held, coefficients, failure))
            StopOnCoefficients(brick.run, failure);
        const double w = point.weight * jacobian.DET;
        AddConduction<Nodes>(jacobian.HX, coefficients.KX, coefficients.KY, coefficients.KZ, w, ND, sums);
        if (visit.transient)
            AddCapacity<Nodes>(point.shape.H, coefficients.CP, w, ND, sums);
        if (ISRC != 0)
            AddSource<Nodes>(point.shape.H, held.QV, w, ND, sums);
    }
}

// Matrix and right-hand side of the element in hand, and into the system with them. (The scaling of the first group by a
// fibre model belongs ahead of the assembly.)
template <int Nodes> void FormBrick(FormVisit& visit) {
    BrickVisit& brick = visit.brick;
    const ElementNodes<3>& element = brick.element;
    const int ND = NodeCount<Nodes>(brick.points.active.ND);
    BrickSums<Nodes> sums;
    ClearSums(sums, ND);
    const std::int32_t ISRC = ElementSource(brick.run, brick.group, visit.source, brick.number);
    SumOverPoints<Nodes>(visit, ISRC, sums);
    if (visit.transient)
        AddTimeTerm<Nodes>(visit.dt, element.TE0, ND, sums);
    TakeResidual<Nodes>(element.TE1, ND, sums);
    PackUpper<Nodes>(sums, ND, visit.packed.data);
    SkylineAddElement(visit.SkylineMatrix, visit.MAXA, visit.R, visit.packed, ConstRealArray(sums.FE, ND),
                      ConstIntArray(element.LM, ND), ND, visit.matrixFlag);
}

} // namespace

void FormElements3D(Run& run, ElementGroup& group, Word conduction) {
    const RunState& state = run.control.state;
    FormVisit visit{{run, group}};
    visit.transient = run.control.header.NSTAC != 0;
    visit.dt = state.TimeStep;
    visit.packed = RealSection(run.A, conduction, PackedLength(group.NDMAX));
    visit.SkylineMatrix = SkylineStore(run);
    visit.R = RightHandSide(run);
    visit.MAXA = DiagonalPositions(run);
    visit.matrixFlag = state.FactorFlag;
    BeginBrickVisit(visit.brick, group.NGAUS);
    visit.source = BeginVolumeSource(run, group);
    for (std::int32_t n = 1; n <= group.NET; ++n) {
        // Elements that a fibre model leaves out are passed over here.
        TakeBrick(visit.brick, n);
        if (visit.brick.points.active.ND == kCorners<3>)
            FormBrick<kCorners<3>>(visit);
        else
            FormBrick<0>(visit);
    }
}

void FormGroup3D(Run& run, ElementGroup& group) {
    const ElementWork work = LayOutElementWork(run, group.NDMAX);
    if (run.control.header.INTEB != 1)
        return;
    if (run.control.state.ResultsPhaseFlag == 1)
        AddElementFluxes3D(run, group);
    else
        FormElements3D(run, group, work.conduction);
}

} // namespace zurt
