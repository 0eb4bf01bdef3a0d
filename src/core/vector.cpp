#include "core/vector.h"

#include "core/widened_constants.h"
#include <cmath>

namespace zurt {

double VectorLength(const double v[3]) {
    return std::sqrt(VectorDot(v, v));
}

void VectorNormalize(double v[3]) {
    const double length = VectorLength(v);
    for (int i = 0; i < 3; ++i) {
        v[i] /= length;
        if (std::fabs(v[i]) < kNormalizeLimit)
            v[i] = 0.0;
    }
}

void VectorCross(const double a[3], const double b[3], double c[3]) {
    c[0] = a[1] * b[2] - a[2] * b[1];
    c[1] = a[2] * b[0] - a[0] * b[2];
    c[2] = a[0] * b[1] - a[1] * b[0];
}

double VectorDot(const double a[3], const double b[3]) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

void AddScatter(RealArray target, ConstRealArray source, ConstIntArray LM, Word n) {
    for (Word i = 1; i <= n; ++i)
        if (LM(i) > 0)
            target(LM(i)) += source(i);
}

} // namespace zurt
