// Shape functions of the brick at the Gauss points of a rule, made once for all elements with the same active nodes.
//
// Points run with KSI outermost, ETA in the middle, ZETA innermost. Called by the element loops of the 3D family.
#pragma once

#include "elements/gauss_rules.h"
#include "elements/shape_functions.h"

namespace zurt {

constexpr int kMaxBrickPoints = kMaxGaussOrder * kMaxGaussOrder * kMaxGaussOrder;

struct BrickPoint {
    ShapeValues<3> shape;
    double weight = 0.0; // wr*ws*wt
    double place[3];     // r, s, t
};

struct BrickPoints {
    ActiveNodes active; // the nodes that the table is made for; ND 0: none yet
    int count = 0;
    BrickPoint point[kMaxBrickPoints];
};

/// Makes the table for elements with the nodes `active` under the orders NGAUS (each 1..5).
void SetBrickPoints(const ActiveNodes& active, const std::int32_t (&NGAUS)[3], BrickPoints& points);

/// True when the table serves elements with these nodes.
bool ServesNodes(const BrickPoints& points, const ActiveNodes& active);

} // namespace zurt
