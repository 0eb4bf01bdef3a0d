#include "model/curve_lookup.h"

#include <cmath>

namespace zurt {

CurveView DiffusionCurve(ConstRealTable table, ConstIntArray points, std::int32_t curve) {
    return {&table(curve, 1), &table(curve, 2), 2 * table.rows, points(curve)};
}

CurveView PairCurve(ConstRealTable pairs, ConstIntArray points, std::int32_t f) {
    return {&pairs(2 * Word{f} - 1, 1), &pairs(2 * Word{f}, 1), pairs.rows, points(f)};
}

namespace {

// Between the points at `argument`, `value` and the next ones.
inline double ValueBetween(const double* argument, const double* value, Word stride, double x) {
    return ValueOnLine(*argument, *value, argument[stride], value[stride], x);
}

// Whether the scan takes x, which no interval holds, for the end of the curve that it lies beyond. Of a curve shorter than
// the tolerance it takes the first one on both sides.
inline bool IsAtItsEnd(double first, double last, double x) {
    if (std::fabs(x - first) <= kCurveEndTolerance)
        return x < first;
    return x >= last && x - last <= kCurveEndTolerance;
}

} // namespace

CurveInterval FindOnCurve(const CurveView& curve, double x) {
    const double* argument = curve.argument;
    for (Word p = 0; p + 1 < curve.points; ++p, argument += curve.stride)
        if (*argument <= x && x < argument[curve.stride])
            return {CurvePlace::Inside, p};
    if (std::fabs(x - *curve.argument) <= kCurveEndTolerance)
        return {CurvePlace::AtFirst, 0};
    if (std::fabs(x - *argument) <= kCurveEndTolerance)
        return {CurvePlace::AtLast, Word{curve.points} - 1};
    return {CurvePlace::Outside, 0};
}

CurvePlace LocateOnCurve(const CurveView& curve, double x, double& y) {
    if (curve.points < 2) {
        y = *curve.value;
        return CurvePlace::Inside;
    }
    const CurveInterval found = FindOnCurve(curve, x);
    const Word at = found.point * curve.stride;
    if (found.place == CurvePlace::Inside)
        y = ValueBetween(curve.argument + at, curve.value + at, curve.stride, x);
    return found.place;
}

bool ArgumentsRise(const CurveView& curve) {
    const double* argument = curve.argument;
    for (std::int32_t p = 1; p < curve.points; ++p, argument += curve.stride)
        if (!(*argument < argument[curve.stride]))
            return false;
    return curve.points > 1;
}

bool LookUpRisingCurve(const CurveView& curve, int count, double* values) {
    const Word end = curve.stride * (curve.points - 1);
    const double first = *curve.argument;
    const double last = curve.argument[end];
    bool inside = true;
    for (int i = 0; i < count; ++i) {
        const double x = values[i];
        if (!(first <= x && x < last)) {
            inside &= IsAtItsEnd(first, last, x);
            values[i] = curve.value[x < first ? 0 : end];
            continue;
        }
        Word interval = 0; // the last one that doesn't begin above x is among the `intervals` from here on
        for (Word intervals = curve.points - 1; intervals > 1;) {
            const Word half = intervals / 2;
            interval += half * (curve.argument[(interval + half) * curve.stride] <= x);
            intervals -= half;
        }
        const Word place = interval * curve.stride;
        values[i] = ValueBetween(curve.argument + place, curve.value + place, curve.stride, x);
    }
    return inside;
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
