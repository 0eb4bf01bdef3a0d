#include "geometry/jacobian_cause.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

namespace zurt {

namespace {

template <int Family>
using CornerOrder = std::array<int, kCorners<Family>>; // which corner, from 0, stands where

// The corner that lies next to corner c in natural direction d, or c itself, on its side +1 or -1.
template <int Family> int CornerAlong(int c, int d, int end) {
    constexpr auto& place = FamilyShape<Family>::kPlace;
    for (int other = 0; other < kCorners<Family>; ++other) {
        bool along = place[other][d] == end;
        for (int k = 0; k < kDimension<Family>; ++k)
            along = along && (k == d || place[other][k] == place[c][k]);
        if (along)
            return other;
    }
    return c;
}

// Ends of the edges that meet in each corner, in the natural directions.
template <int Family> struct CornerEdges {
    int end[kCorners<Family>][kDimension<Family>][2];
    CornerEdges() {
        for (int c = 0; c < kCorners<Family>; ++c)
            for (int d = 0; d < kDimension<Family>; ++d) {
                end[c][d][0] = CornerAlong<Family>(c, d, -1);
                end[c][d][1] = CornerAlong<Family>(c, d, +1);
            }
    }
};

// The determinant in a corner of the element without mid-side nodes, times 2 to the power of its dimension; for a line its
// length.
template <int Family>
double CornerDeterminant(const int (&end)[kDimension<Family>][2], const NodeCoordinates<Family>& CORE,
                         const CornerOrder<Family>& order) {
    double edge[3][3] = {};
    for (int d = 0; d < kDimension<Family>; ++d)
        for (int axis = 0; axis < 3; ++axis)
            edge[d][axis] = CORE[axis][order[static_cast<std::size_t>(end[d][1])]] -
                            CORE[axis][order[static_cast<std::size_t>(end[d][0])]];
    if constexpr (kDimension<Family> == 1)
        return std::hypot(edge[0][0], edge[0][1], edge[0][2]);
    else if constexpr (kDimension<Family> == 2)
        return edge[0][0] * edge[1][1] - edge[0][1] * edge[1][0];
    else
        return edge[0][0] * (edge[1][1] * edge[2][2] - edge[1][2] * edge[2][1]) -
               edge[0][1] * (edge[1][0] * edge[2][2] - edge[1][2] * edge[2][0]) +
               edge[0][2] * (edge[1][0] * edge[2][1] - edge[1][1] * edge[2][0]);
}

// The smallest of all corners, or the first one that is not above `enough`.
template <int Family>
double SmallestAtCorners(const CornerEdges<Family>& edges, const NodeCoordinates<Family>& CORE,
                         const CornerOrder<Family>& order, double enough) {
    double smallest = HUGE_VAL;
    for (int c = 0; c < kCorners<Family> && smallest > enough; ++c)
        smallest = std::min(smallest, CornerDeterminant<Family>(edges.end[c], CORE, order));
    return smallest;
}

template <int Family> CornerOrder<Family> OrderAsGiven() {
    CornerOrder<Family> order;
    std::iota(order.begin(), order.end(), 0);
    return order;
}

template <int Family> int CornersKept(const CornerOrder<Family>& order) {
    int kept = 0;
    for (std::size_t c = 0; c < order.size(); ++c)
        kept += order[c] == static_cast<int>(c);
    return kept;
}

// The order whose smallest determinant is the largest; false when none is positive everywhere. Equal shapes differ by
// rounding.
template <int Family> bool FindOrder(const NodeCoordinates<Family>& CORE, CornerOrder<Family>& best) {
    constexpr double kRounding = 1e-9;
    const CornerEdges<Family> edges;
    double found = 0.0;
    CornerOrder<Family> order = OrderAsGiven<Family>();
    do {
        const double smallest = SmallestAtCorners(edges, CORE, order, found * (1.0 - kRounding));
        if (!(smallest > found * (1.0 - kRounding)) || !(smallest > 0.0))
            continue;
        const bool better = smallest > found * (1.0 + kRounding);
        if (better || CornersKept<Family>(order) > CornersKept<Family>(best)) {
            best = order;
            found = std::max(found, smallest);
        }
    } while (std::next_permutation(order.begin(), order.end()));
    return found > 0.0;
}

// Without mid-side nodes, at the points of the rule.
template <int Family>
bool PositiveInside(const ElementInDoubt<Family>& element, const CornerOrder<Family>& order) {
    NodeCoordinates<Family> CORE{};
    for (int axis = 0; axis < 3; ++axis)
        for (std::size_t c = 0; c < order.size(); ++c)
            CORE[axis][c] = element.CORE[axis][order[c]];
    ActiveNodes corners;
    corners.ND = kCorners<Family>;
    ShapeValues<Family> shape;
    JacobianValues<Family> jacobian;
    bool positive = true;
    for (int p = 0; p < element.points.count; ++p)
        positive = positive && ShapeAndJacobian<Family>(element.points.point[p].place, 0, 0, corners, CORE,
                                                        shape, jacobian);
    return positive;
}

// Two nodes that are the same, or lie at the same place.
template <int Family> std::string DoubleNode(const ElementInDoubt<Family>& element) {
    const int ND = element.points.active.ND;
    for (int i = 0; i < ND; ++i)
        for (int k = i + 1; k < ND; ++k) {
            const std::string number = std::to_string(element.node[i]);
            if (element.node[i] == element.node[k])
                return "node " + number + " stands twice on its card";
            bool same = true;
            for (int axis = 0; axis < (kDimension<Family> == 2 ? 2 : 3); ++axis)
                same = same && element.CORE[axis][i] == element.CORE[axis][k];
            if (same)
                return "its nodes " + number + " and " + std::to_string(element.node[k]) +
                       " lie at the same place";
        }
    return "";
}

} // namespace

template <int Family>
std::string CauseOfJacobian(const ElementInDoubt<Family>& element, int KFIX, double determinant) {
    std::string twice = DoubleNode(element);
    if (!twice.empty())
        return twice;
    if (KFIX > 0)
        return "a side of it has no extent";
    if (determinant > 0.0)
        return "the element is too small for the unit of length: determinants must lie above 1e-15";
    const CornerEdges<Family> edges;
    const CornerOrder<Family> given = OrderAsGiven<Family>();
    CornerOrder<Family> order = given;
    if (SmallestAtCorners(edges, element.CORE, given, 0.0) > 0.0 && PositiveInside(element, given))
        return "its corners are right: a mid-side node lies too far from the middle of its edge";
    if (!FindOrder<Family>(element.CORE, order) || !PositiveInside(element, order))
        return "its corners are right in no order: look at the coordinates of its nodes";
    std::string text = "the order of its nodes; these corners are right in the order";
    for (const int c : order)
        text += " " + std::to_string(element.node[c]);
    return text;
}

template <int Family> int NumberOfPoint(const ElementPoints<Family>& points, const double* place) {
    for (int p = 0; p < points.count; ++p)
        if (std::equal(place, place + kDimension<Family>, points.point[p].place))
            return p + 1;
    return 0;
}

#define ZURT_JACOBIAN_CAUSE(FAMILY)                                                                          \
    template std::string CauseOfJacobian(const ElementInDoubt<FAMILY>&, int, double);                        \
    template int NumberOfPoint(const ElementPoints<FAMILY>&, const double*);
ZURT_FOR_ALL_FAMILIES(ZURT_JACOBIAN_CAUSE)
#undef ZURT_JACOBIAN_CAUSE

} // namespace zurt
