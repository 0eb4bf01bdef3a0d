#include "elements/forming/element_fluxes.h"

#include "elements/forming/element_kernel.h"
#include "elements/forming/element_visit.h"
#include "elements/forming/nodal_averaging.h"

#include <algorithm>

namespace zurt {

namespace {

// The corner, from 0, in whose half, quarter or octant each point of the rule lies.
template <int Dimension> constexpr int kCornerOfPoint[kCorners<Dimension>] = {1, 0};
template <> constexpr int kCornerOfPoint<2>[kCorners<2>] = {2, 1, 3, 0};
template <> constexpr int kCornerOfPoint<3>[kCorners<3>] = {6, 2, 5, 1, 7, 3, 4, 0};

template <int Dimension> using ElementResults = NodalResult[kMaxNodes<Dimension>];

// Flux -K grad c at a point from the derivatives of c, which for a line is one: along its tangent.
template <int Dimension>
void SetFlux(const JacobianValues<Dimension>& jacobian, const double* TE1, int ND, NodalResult& result) {
    for (int axis = 0; axis < Dimension; ++axis)
        result.flux[axis] = -Interpolate<0>(jacobian.HX[axis], TE1, ND) * result.coefficient[axis];
    if constexpr (Dimension == 1) {
        const double along = result.flux[0];
        for (int axis = 0; axis < 3; ++axis)
            result.flux[axis] = along * (jacobian.XJ[0][axis] / jacobian.DET);
    }
}

// Flux and coefficients of the corners of the element in hand by their Gauss points.
template <int Dimension>
void EvaluateCorners(ElementVisit<Dimension>& visit, ElementResults<Dimension>& results) {
    const ElementNodes<Dimension>& element = visit.walk.element;
    const int ND = visit.walk.points.active.ND;
    const Coefficients& K = visit.coefficients;
    for (int p = 0; p < visit.walk.points.count; ++p) {
        const ElementPoint<Dimension>& point = visit.walk.points.point[p];
        JacobianValues<Dimension> jacobian;
        LocatePoint(visit.walk, point, jacobian);
        const double TG = Interpolate<0>(point.shape.H, element.TE1, ND);
        EvaluateCoefficientsAt(visit, p + 1, TG);
        NodalResult& result = results[kCornerOfPoint<Dimension>[p]];
        const double byAxis[3] = {K.KX, K.KY, K.KZ};
        std::copy(byAxis, byAxis + Dimension, result.coefficient);
        SetFlux<Dimension>(jacobian, element.TE1, ND, result);
    }
}

// The mean of `count` corners.
NodalResult MeanOf(const NodalResult* results, const int* corners, int count) {
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

template <int Dimension>
void SpreadToMidSides(const ActiveNodes& active, ElementResults<Dimension>& results) {
    constexpr int corners = kCorners<Dimension>;
    for (int i = 0; i < active.midSideCount; ++i) {
        NodalResult& result = results[corners + i];
        result = MeanOf(results, kCornerOfPoint<Dimension>, corners);
        if constexpr (Dimension > 1)
            if (active.midSide[i] < kMaxNodes<Dimension>) {
                int ends[2];
                EndsOfEdge<Dimension>(active.midSide[i], ends);
                result = MeanOf(results, ends, 2);
            }
    }
}

} // namespace

template <int Dimension> void AddElementFluxes(Run& run, ElementGroup& group) {
    ElementVisit<Dimension> visit{run, group};
    visit.integrates = false;
    BeginElementVisit(visit, kFluxOrders);
    const NodalSums sums = NodalSumsOf(run);
    for (std::int32_t n = 1; n <= group.NET; ++n) {
        if (!TakesPart(visit, n))
            continue;
        AnnounceElement(run, n);
        VisitElement(visit, n);
        ElementResults<Dimension> results;
        EvaluateCorners<Dimension>(visit, results);
        SpreadToMidSides<Dimension>(visit.walk.points.active, results);
        for (int k = 0; k < visit.walk.points.active.ND; ++k)
            AddNodalResult(sums, visit.walk.element.node[k], results[k]);
    }
}

template void AddElementFluxes<1>(Run&, ElementGroup&);
template void AddElementFluxes<2>(Run&, ElementGroup&);
template void AddElementFluxes<3>(Run&, ElementGroup&);

} // namespace zurt
