// Small helpers on 3-vectors and on scattered sums.
#pragma once

#include "core/array_view.h"

namespace zurt {

/// Euclidean length of the 3-vector v.
double VectorLength(const double v[3]);

/// Divides the 3-vector v by its length; a component of the result below kNormalizeLimit in size becomes 0.
void VectorNormalize(double v[3]);

/// c = a x b.
void VectorCross(const double a[3], const double b[3], double c[3]);

/// a . b, summed in the order x, y, z.
double VectorDot(const double a[3], const double b[3]);

/// target(LM(i)) += source(i) for i = 1..n wherever LM(i) is above 0.
void AddScatter(RealArray target, ConstRealArray source, ConstIntArray LM, Word n);

} // namespace zurt
