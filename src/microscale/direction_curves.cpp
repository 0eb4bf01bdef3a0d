#include "microscale/direction_curves.h"

#include "model/curve_lookup.h"

#include <algorithm>
#include <cmath>

namespace zurt {

namespace {

// From a curve with the ends first and first + bulkSpan to one that begins at `low` and has the span `span`.
struct CurveScale {
    double first, bulkSpan, low, span;
};

double Scaled(const CurveScale& scale, double D) {
    return std::fabs(scale.bulkSpan) <= kFlatCurve
               ? scale.low
               : (D - scale.first) * scale.span / scale.bulkSpan + scale.low;
}

} // namespace

void ScaleDiffusionCurve(RealTable table, std::int32_t material, ConstRealArray DBULK, Word N, double first,
                         double last, double low, double span) {
    const CurveScale scale{first, last - first, low, span};
    for (Word i = 1; i <= N; ++i)
        table(material, 2 * i) = Scaled(scale, DBULK(i));
}

std::int32_t CurveForDirection(ConstRealTable table, ConstIntArray points, std::int32_t material,
                               ConstRealArray DBULK, const double (&D1DIR)[4], const double (&D2DIR)[4],
                               double c, double& Dx, double& Dy, double& Dz) {
    const Word N = points(material);
    if (N < 2) {
        Dx = D1DIR[1];
        Dy = D1DIR[2];
        Dz = D1DIR[3];
        return 0;
    }
    const CurveInterval found = FindOnCurve(DiffusionCurve(table, points, material), c);
    if (found.place == CurvePlace::Outside)
        return 1;
    const Word i = found.point + 1;
    double* const D[4] = {nullptr, &Dx, &Dy, &Dz};
    for (int direction = 1; direction <= 3; ++direction) {
        const CurveScale scale{DBULK(1), DBULK(N) - DBULK(1),
                               D1DIR[std::min(direction, 2)], // Z begins where Y begins
                               D2DIR[direction] - D1DIR[direction]};
        const double low = Scaled(scale, DBULK(i));
        *D[direction] = found.place != CurvePlace::Inside
                            ? low
                            : ValueOnLine(table(material, 2 * i - 1), low, table(material, 2 * i + 1),
                                          Scaled(scale, DBULK(i + 1)), c);
    }
    return 0;
}

} // namespace zurt
