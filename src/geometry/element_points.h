// Shape functions at the Gauss points of a rule, made once for all elements with the same active nodes.
//
// Points run with the first natural direction outermost, the last one innermost. Called by the element loops of the
// isoparametric families.
#pragma once

#include "geometry/gauss_rules.h"
#include "geometry/shape_functions.h"

namespace zurt {

/// Most points of a rule.
template <int Family>
constexpr int kMaxPoints = [] {
    int points = 1;
    for (int d = 0; d < kDimension<Family>; ++d)
        points *= kMaxGaussOrder;
    return points;
}();

template <int Family> struct ElementPoint {
    ShapeValues<Family> shape;
    double weight = 0.0;              // wr*ws*wt
    double place[kDimension<Family>]; // r, s, t
};

template <int Family> struct ElementPoints {
    ActiveNodes active; // the nodes that the table is made for; ND 0: none yet
    int count = 0;
    ElementPoint<Family> point[kMaxPoints<Family>];
};

/// Makes the table for elements with the nodes `active`; orders: of each direction, 1..5.
template <int Family>
void SetElementPoints(const ActiveNodes& active, const std::int32_t* orders, ElementPoints<Family>& points);

/// True when the table serves elements with these nodes.
bool ServesNodes(const ActiveNodes& table, const ActiveNodes& active);

} // namespace zurt
