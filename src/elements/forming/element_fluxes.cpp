#include "elements/forming/element_fluxes.h"

#include "core/ranks.h"
#include "elements/forming/element_chunks.h"
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

// What the element in hand gives to its nodes; ND 0: it takes no part.
template <int Family> struct ElementFluxes {
    std::int32_t ND;
    std::int32_t node[kMaxNodes<Family>];
    ElementResults<Family> results;
};

template <int Family>
void EvaluateFluxes(ElementVisit<Family>& visit, std::int32_t n, ElementFluxes<Family>& fluxes) {
    fluxes.ND = 0;
    if (!TakesPart(visit, n))
        return;
    AnnounceElement(visit.run, n);
    VisitElement(visit, n);
    std::fill(fluxes.results, fluxes.results + kMaxNodes<Family>, NodalResult());
    EvaluateCorners<Family>(visit, fluxes.results);
    SpreadToMidSides<Family>(visit.walk.points.active, fluxes.results);
    fluxes.ND = visit.walk.points.active.ND;
    std::copy(visit.walk.element.node, visit.walk.element.node + kMaxNodes<Family>, fluxes.node);
}

template <int Family> void AddFluxes(const NodalSums& sums, const ElementFluxes<Family>& fluxes) {
    for (int k = 0; k < fluxes.ND; ++k)
        AddNodalResult(sums, fluxes.node[k], fluxes.results[k]);
}

// A worker's visit, with room for the elements of a chunk.
template <int Family> struct FluxVisit {
    FluxVisit(Run& run, const ElementGroup& group) : elements{run, group} {}
    ElementVisit<Family> elements;
    ElementFluxes<Family> chunk[kChunkElements];
};

template <int Family> void AddFluxesSideBySide(Run& run, const ElementGroup& group, const NodalSums& sums) {
    const auto begin = [](FluxVisit<Family>& visit) {
        visit.elements.integrates = false;
        JoinElementVisit(visit.elements, kFluxOrders);
    };
    const auto compute = [&](FluxVisit<Family>& visit, std::int32_t n, std::size_t place) {
        ElementFluxes<Family>& fluxes = visit.chunk[place];
        EvaluateFluxes(visit.elements, n, fluxes);
        if (run.workers.sideBySide)
            for (int k = 0; k < fluxes.ND; ++k)
                RequireNumbers(fluxes.results[k].coefficient, 3);
    };
    const auto add = [&](const FluxVisit<Family>& visit, std::int32_t, std::size_t place) {
        AddFluxes(sums, visit.chunk[place]);
    };
    ElementsInTurn<FluxVisit<Family>>(run, group, false, begin, compute, add);
}

} // namespace

template <int Family> void AddElementFluxes(Run& run, const ElementGroup& group) {
    ElementVisit<Family> visit{run, group};
    visit.integrates = false;
    BeginElementVisit(visit, kFluxOrders);
    const NodalSums sums = NodalSumsOf(run);
    if (SharesElements(run, group))
        return AddFluxesSideBySide<Family>(run, group, sums);
    ElementFluxes<Family> fluxes;
    const Share share = ShareOf(group.NET);
    for (auto n = static_cast<std::int32_t>(share.first); n <= share.last; ++n) {
        EvaluateFluxes(visit, n, fluxes);
        AddFluxes(sums, fluxes);
    }
    AnnounceOtherElements(visit, share.last + 1);
}

#define ZURT_ELEMENT_FLUXES(FAMILY) template void AddElementFluxes<FAMILY>(Run&, const ElementGroup&);
ZURT_FOR_ALL_FAMILIES(ZURT_ELEMENT_FLUXES)
#undef ZURT_ELEMENT_FLUXES

} // namespace zurt
