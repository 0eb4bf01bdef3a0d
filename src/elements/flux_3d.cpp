#include "elements/flux_3d.h"

#include "elements/brick_kernel.h"
#include "elements/brick_visit.h"
#include "elements/nodal_averaging.h"

namespace zurt {

namespace {

constexpr std::int32_t kResultOrders[3] = {2, 2, 2};

// The corner, from 0, in whose octant each point of the 2 x 2 x 2 rule lies.
constexpr int kCornerOfPoint[kCorners<3>] = {6, 2, 5, 1, 7, 3, 4, 0};

// The two corners, from 0, between which mid-side node `number` (9 to 20) lies: nodes 9 to 16 go round the two faces of
// constant t, 17 to 20 join them.
void EndsOfEdge(int number, int (&ends)[2]) {
    ends[0] = number <= 16 ? number - 9 : number - 17;
    ends[1] = number > 16 ? number - 13 : number % 4 == 0 ? number - 12 : number - 8;
}

// Flux and coefficients of all active nodes of the element in hand, corners by their Gauss points.
void EvaluateCorners(BrickVisit& visit, NodalResult (&results)[kMaxNodes<3>]) {
    const ElementNodes<3>& element = visit.element;
    const int ND = visit.points.active.ND;
    Coefficients& K = visit.coefficients;
    for (int p = 0; p < visit.points.count; ++p) {
        const BrickPoint& point = visit.points.point[p];
        JacobianValues<3> jacobian;
        if (!JacobianVolume<3>(point.shape, element.CORE, ND, jacobian))
            StopOnBrickJacobian(visit, point, jacobian.DET);
        const double TG = Interpolate<0>(point.shape.H, element.TE1, ND);
        CoefficientFailure failure;
        if (!EvaluateCoefficients(visit.tables, visit.material, TG, visit.group.held, K, failure))
            StopOnCoefficients(visit.run, failure);
        NodalResult& result = results[kCornerOfPoint[p]];
        result.coefficient[0] = K.KX;
        result.coefficient[1] = K.KY;
        result.coefficient[2] = K.KZ;
        for (int axis = 0; axis < 3; ++axis)
            result.flux[axis] =
                -Interpolate<0>(jacobian.HX[axis], element.TE1, ND) * result.coefficient[axis];
    }
}

// The mean of `count` corners.
NodalResult MeanOf(const NodalResult (&results)[kMaxNodes<3>], const int* corners, int count) {
    NodalResult mean;
    for (int axis = 0; axis < 3; ++axis) {
        for (int i = 0; i < count; ++i) {
            mean.flux[axis] += results[corners[i]].flux[axis];
            mean.coefficient[axis] += results[corners[i]].coefficient[axis];
        }
        mean.flux[axis] /= count;
        mean.coefficient[axis] /= count;
    }
    return mean;
}

void SpreadToMidSides(const ActiveNodes& active, NodalResult (&results)[kMaxNodes<3>]) {
    constexpr int corners = kCorners<3>;
    for (int i = 0; i < active.midSideCount; ++i) {
        const int number = active.midSide[i];
        int ends[2];
        EndsOfEdge(number, ends);
        results[corners + i] =
            number == kMaxNodes<3> ? MeanOf(results, kCornerOfPoint, corners) : MeanOf(results, ends, 2);
    }
}

} // namespace

void AddElementFluxes3D(Run& run, ElementGroup& group) {
    BrickVisit visit{run, group};
    BeginBrickVisit(visit, kResultOrders);
    NodalSums sums = NodalSumsOf(run);
    for (std::int32_t n = 1; n <= group.NET; ++n) {
        TakeBrick(visit, n);
        NodalResult results[kMaxNodes<3>];
        EvaluateCorners(visit, results);
        SpreadToMidSides(visit.points.active, results);
        for (int k = 0; k < visit.points.active.ND; ++k)
            AddNodalResult(sums, visit.element.node[k], results[k]);
    }
}

} // namespace zurt
