// Why the Jacobian of an element is not positive, in words: called where a run ends on one and by the check of a deck.
#pragma once

#include "geometry/element_points.h"
#include "geometry/jacobian.h"

#include <string>

namespace zurt {

/// An element as the walk has it in hand.
template <int Family> struct ElementInDoubt {
    const ElementPoints<Family>& points; // of its rule
    const NodeCoordinates<Family>& CORE;
    const std::int32_t* node; // numbers of its points.active.ND nodes, in compressed order
};

/// The likely cause. Names an order of the corners only when all determinants are positive in it, at the corners and at the
/// points of the rule: the best of such orders, and among the equally good ones the one that keeps most corners in place.
///   KFIX         0 for a point inside, above 0 on a side
///   determinant  what was found, not above kSmallestJacobian
template <int Family>
std::string CauseOfJacobian(const ElementInDoubt<Family>& element, int KFIX, double determinant);

/// Number, from 1, of the point of the rule at `place`; 0 when it is none of them.
template <int Family> int NumberOfPoint(const ElementPoints<Family>& points, const double* place);

} // namespace zurt
