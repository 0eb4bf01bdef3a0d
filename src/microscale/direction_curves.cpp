#include "microscale/direction_curves.h"

#include "model/curve_lookup.h"

#include <cmath>

namespace zurt {

namespace {

constexpr double kFlatCurve = 1.0e-8;

// T(i) takes the saved curve, brought to `span` and put on `low`.
void ScaleCurve(RealTable table, ConstRealArray DBULK, std::int32_t material, Word N, double span,
                double low) {
    const double bulkSpan = DBULK(N) - DBULK(1);
    const bool flat = std::fabs(bulkSpan) <= kFlatCurve;
    for (Word i = 1; i <= N; ++i)
        table(material, 2 * i) = flat ? low : (DBULK(i) - DBULK(1)) * span / bulkSpan + low;
}

} // namespace

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
    ScaleCurve(table, DBULK, material, N, D2DIR[1] - D1DIR[1], D1DIR[1]);
    error |= DiffusionLookup(table, points, material, c, Dx);
    ScaleCurve(table, DBULK, material, N, D2DIR[2] - D1DIR[2], D1DIR[2]);
    error |= DiffusionLookup(table, points, material, c, Dy);
    ScaleCurve(table, DBULK, material, N, D2DIR[3] - D1DIR[3], D1DIR[2]); // begins where Y begins
    error |= DiffusionLookup(table, points, material, c, Dz);
    for (Word i = 1; i <= N; ++i)
        table(material, 2 * i) = DBULK(i);
    return error;
}

} // namespace zurt
