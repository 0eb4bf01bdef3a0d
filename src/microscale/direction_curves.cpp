#include "microscale/direction_curves.h"

#include "model/curve_lookup.h"

#include <algorithm>
#include <cmath>

namespace zurt {

void ScaleDiffusionCurve(RealTable table, std::int32_t material, ConstRealArray DBULK, Word N, double first,
                         double last, double low, double span) {
    const double bulkSpan = last - first;
    const bool flat = std::fabs(bulkSpan) <= kFlatCurve;
    for (Word i = 1; i <= N; ++i)
        table(material, 2 * i) = flat ? low : (DBULK(i) - first) * span / bulkSpan + low;
}

std::int32_t CurveForDirection(RealTable table, ConstIntArray points, std::int32_t material,
                               ConstRealArray DBULK, const double (&D1DIR)[4], const double (&D2DIR)[4],
                               double c, double& Dx, double& Dy, double& Dz) {
    const Word N = points(material);
    if (N < 2) {
        Dx = D1DIR[1];
        Dy = D1DIR[2];
        Dz = D1DIR[3];
        return 0;
    }
    std::int32_t error = 0;
    double* const D[4] = {nullptr, &Dx, &Dy, &Dz};
    for (int direction = 1; direction <= 3; ++direction) {
        const double low = D1DIR[std::min(direction, 2)]; // Z begins where Y begins
        ScaleDiffusionCurve(table, material, DBULK, N, DBULK(1), DBULK(N), low,
                            D2DIR[direction] - D1DIR[direction]);
        error |= DiffusionLookup(table, points, material, c, *D[direction]);
    }
    for (Word i = 1; i <= N; ++i)
        table(material, 2 * i) = DBULK(i);
    return error;
}

} // namespace zurt
