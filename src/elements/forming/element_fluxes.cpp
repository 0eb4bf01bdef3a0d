#include "elements/forming/element_fluxes.h"

#include "elements/forming/element_kernel.h"
#include "elements/forming/element_visit.h"
#include "elements/forming/nodal_averaging.h"

#include <algorithm>

namespace zurt {

namespace {

template <int Family> using ElementResults = NodalResult[kMaxNodes<Family>];

// Flux -K grad c at a point from the derivatives of c, which for a line is one: along its tangent.
template <int Family>
void SetFlux(const JacobianValues<Family>& jacobian, const double* TE1, int ND, NodalResult& result) {
    for (int axis = 0; axis < kDimension<Family>; ++axis)
        result.flux[axis] = -Interpolate<0>(jacobian.HX[axis], TE1, ND) * result.coefficient[axis];
    if constexpr (kDimension<Family> == 1) {
        const double along = result.flux[0];
        for (int axis = 0; axis < 3; ++axis)
            result.flux[axis] = along * (jacobian.XJ[0][axis] / jacobian.DET);
    }
}

// Flux and coefficients of the corners of the element in hand by their Gauss points.
template <int Family> void EvaluateCorners(ElementVisit<Family>& visit, ElementResults<Family>& results) {
    const ElementNodes<Family>& element = visit.walk.element;
    const int ND = visit.walk.points.active.ND;
    const Coefficients& K = visit.coefficients;
    for (int p = 0; p < visit.walk.points.count; ++p) {
        const ElementPoint<Family>& point = visit.walk.points.point[p];
        JacobianValues<Family> jacobian;
        LocatePoint(visit.walk, point, jacobian);
        const double TG = Interpolate<0>(point.shape.H, element.TE1, ND);
        EvaluateCoefficientsAt(visit, p + 1, TG);
        NodalResult& result = results[FamilyShape<Family>::kCornerOfPoint[p]];
        const double byAxis[3] = {K.KX, K.KY, K.KZ};
        std::copy(byAxis, byAxis + kDimension<Family>, result.coefficient);
        SetFlux<Family>(jacobian, element.TE1, ND, result);
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

template <int Family> void SpreadToMidSides(const ActiveNodes& active, ElementResults<Family>& results) {
    constexpr int corners = kCorners<Family>;
    for (int i = 0; i < active.midSideCount; ++i) {
        NodalResult& result = results[corners + i];
        result = MeanOf(results, FamilyShape<Family>::kCornerOfPoint, corners);
        if constexpr (kDimension<Family> != 1)
            if (active.midSide[i] < kMaxNodes<Family>) {
                int ends[2];
                EndsOfEdge<Family>(active.midSide[i], ends);
                result = MeanOf(results, ends, 2);
            }
    }
}

} // namespace

template <int Family> void AddElementFluxes(Run& run, ElementGroup& group) {
    ElementVisit<Family> visit{run, group};
    visit.integrates = false;
    BeginElementVisit(visit, kFluxOrders);
    const NodalSums sums = NodalSumsOf(run);
    for (std::int32_t n = 1; n <= group.NET; ++n) {
        if (!TakesPart(visit, n))
            continue;
        AnnounceElement(run, n);
        VisitElement(visit, n);
        ElementResults<Family> results;
        EvaluateCorners<Family>(visit, results);
        SpreadToMidSides<Family>(visit.walk.points.active, results);
        for (int k = 0; k < visit.walk.points.active.ND; ++k)
            AddNodalResult(sums, visit.walk.element.node[k], results[k]);
    }
}

#define ZURT_ELEMENT_FLUXES(FAMILY) template void AddElementFluxes<FAMILY>(Run&, ElementGroup&);
ZURT_FOR_ALL_FAMILIES(ZURT_ELEMENT_FLUXES)
#undef ZURT_ELEMENT_FLUXES

} // namespace zurt
