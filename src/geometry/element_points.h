// Shape functions at the Gauss points of a rule, made once for all elements with the same active nodes.
//
// Points run with the first natural direction outermost, the last one innermost. Called by the element loops of the
// isoparametric families.
#pragma once

#include "geometry/gauss_rules.h"
#include "geometry/shape_functions.h"

namespace zurt {

/// Most points of a rule: 5, 25, 125.
template <int Dimension> constexpr int kMaxPoints = kMaxGaussOrder* kMaxPoints<Dimension - 1>;
template <> inline constexpr int kMaxPoints<0> = 1;

template <int Dimension> struct ElementPoint {
    ShapeValues<Dimension> shape;
    double weight = 0.0;     // wr*ws*wt
    double place[Dimension]; // r, s, t
};

template <int Dimension> struct ElementPoints {
    ActiveNodes active; // the nodes that the table is made for; ND 0: none yet
    int count = 0;
    ElementPoint<Dimension> point[kMaxPoints<Dimension>];
};

/// Makes the table for elements with the nodes `active`; orders: of each direction, 1..5.
template <int Dimension>
void SetElementPoints(const ActiveNodes& active, const std::int32_t* orders,
                      ElementPoints<Dimension>& points);

/// True when the table serves elements with these nodes.
bool ServesNodes(const ActiveNodes& table, const ActiveNodes& active);

} // namespace zurt
