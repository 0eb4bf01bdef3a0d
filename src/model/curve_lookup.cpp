#include "model/curve_lookup.h"

#include <cmath>

namespace zurt {

namespace {

CurveView DiffusionCurve(ConstRealTable table, ConstIntArray points, std::int32_t c) {
    return {&table(c, 1), &table(c, 2), 2 * table.rows, points(c)};
}

} // namespace

CurveView PairCurve(ConstRealTable pairs, ConstIntArray points, std::int32_t f) {
    return {&pairs(2 * Word{f} - 1, 1), &pairs(2 * Word{f}, 1), pairs.rows, points(f)};
}

CurvePlace LocateOnCurve(const CurveView& curve, double x, double& y) {
    const double* argument = curve.argument;
    const double* value = curve.value;
    if (curve.points < 2) {
        y = *value;
        return CurvePlace::Inside;
    }
    for (std::int32_t p = 1; p < curve.points; ++p, argument += curve.stride, value += curve.stride) {
        const double next = argument[curve.stride];
        if (*argument <= x && x < next) {
            y = *value + ((value[curve.stride] - *value) / (next - *argument)) * (x - *argument);
            return CurvePlace::Inside;
        }
    }
    if (std::fabs(x - *curve.argument) <= kCurveEndTolerance)
        return CurvePlace::AtFirst;
    if (std::fabs(x - *argument) <= kCurveEndTolerance)
        return CurvePlace::AtLast;
    return CurvePlace::Outside;
}

std::int32_t CurveLookup(ConstRealTable pairs, ConstIntArray points, std::int32_t curve, double x, double& y,
                         std::int32_t& n) {
    const CurveView view = PairCurve(pairs, points, curve);
    n = view.points;
    return LocateOnCurve(view, x, y) == CurvePlace::Outside ? 1 : 0;
}

std::int32_t DiffusionLookup(ConstRealTable table, ConstIntArray points, std::int32_t curve, double x,
                             double& y) {
    const CurveView view = DiffusionCurve(table, points, curve);
    const CurvePlace place = LocateOnCurve(view, x, y);
    if (place == CurvePlace::AtFirst)
        y = *view.value;
    else if (place == CurvePlace::AtLast)
        y = view.value[view.stride * (view.points - 1)];
    return place == CurvePlace::Outside ? 1 : 0;
}

double TimeMultiplierLookup(ConstRealArray pairs, std::int32_t n, double t) {
    for (Word i = 1; i <= n; ++i) {
        const double argument = pairs(2 * i - 1);
        if (!(t < argument))
            continue;
        if (i == 1) // no point to interpolate from
            return pairs(2);
        const double argument0 = pairs(2 * i - 3);
        const double value0 = pairs(2 * i - 2);
        return value0 + (pairs(2 * i) - value0) * (t - argument0) / (argument - argument0);
    }
    return pairs(2 * Word{n});
}

std::int32_t TimeFunctionValues(ConstRealTable pairs, ConstIntArray points, double TIME, ConstIntArray active,
                                ConstIntArray functions, ConstRealArray multipliers, Word count,
                                RealArray out) {
    double Y = 0.0;
    for (Word i = 1; i <= count; ++i) {
        if (active(i) == 0)
            continue;
        if (LocateOnCurve(PairCurve(pairs, points, functions(i)), TIME, Y) == CurvePlace::Outside)
            return functions(i);
        out(i) = multipliers(i) * Y;
    }
    return 0;
}

} // namespace zurt
