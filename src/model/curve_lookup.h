// Values of piecewise linear curves: material curves, diffusion curves, time functions, the time multiplier.
//
// Curves are tables of points (argument, value). Two layouts are in use:
//   pairs     rows 2f-1 and 2f hold argument and value of curve f, a column is a point: functions of time or
//             concentration, conduction and specific heat curves;
//   diffusion row c belongs to curve c, columns 2p-1 and 2p hold argument and value of point p.
// Intervals are half open: a point belongs to the interval that begins there. Outside its points a curve has no value,
// but for an absolute tolerance of 1e-10 at both ends. Arguments are to rise; no look-up tests
// that. Units are those of the deck. Called at every integration point and every step; kernels without any state.
#pragma once

#include "core/array_view.h"

#include <cstdint>

namespace zurt {

/// How far outside its ends a curve still counts as defined, in units of the argument.
constexpr double kCurveEndTolerance = 1e-10;

/// One curve: argument and value of point p (from 1) stand `stride` doubles behind those of the point before.
struct CurveView {
    const double* argument = nullptr;
    const double* value = nullptr;
    Word stride = 0;
    std::int32_t points = 0;
};

enum class CurvePlace {
    Inside,  // the value was found
    AtFirst, // no interval holds the argument, but it lies within the tolerance of the first one
    AtLast,  // the same at the last argument: half open intervals end short of it
    Outside
};

/// Curve f of a table of pairs; `points` holds the number of points of each curve.
CurveView PairCurve(ConstRealTable pairs, ConstIntArray points, std::int32_t f);

/// Where an argument lies on a curve: the number, from 0, of the point that begins its interval, or of the end that it
/// counts as.
struct CurveInterval {
    CurvePlace place;
    Word point;
};

/// The first interval of a curve of two points or more that holds x. NaN is outside every curve.
CurveInterval FindOnCurve(const CurveView& curve, double x);

/// The value at x of the line through (x0, y0) and (x1, y1).
inline double ValueOnLine(double x0, double y0, double x1, double y1, double x) {
    return y0 + ((y1 - y0) / (x1 - x0)) * (x - x0);
}

/// Looks for the first interval that holds x and interpolates into y. A curve of fewer than two points is the constant
/// of its first point. With any other answer than Inside, y is left alone. NaN is outside every curve.
CurvePlace LocateOnCurve(const CurveView& curve, double x, double& y);

/// True for a curve of two points or more whose arguments rise from each point to the next.
bool ArgumentsRise(const CurveView& curve);

/// DiffusionLookup for several arguments of a curve whose arguments rise: by halving instead of a scan and without a branch
/// that depends on where in the curve an argument lies, so that the lookups run side by side. The values have the same bits.
///   values  1..count: arguments (input), the values of the curve there (output)
/// False when an argument is outside, or may be; what stands in `values` is of no use then.
bool LookUpRisingCurve(const CurveView& curve, int count, double* values);

/// Diffusion curve `curve` of a table as in DiffusionLookup.
CurveView DiffusionCurve(ConstRealTable table, ConstIntArray points, std::int32_t curve);

/// Value of a curve of pairs at x.
///   pairs   2*D x P: D curves of up to P points (input)
///   points  1..D: points of each curve, at most P (input)
///   curve   1..D
///   y       output; left as the caller had it when x lies at an end that no interval holds (so at the exact last
///           argument) and when x is outside
///   n       output: the number of points of the curve
/// Returns 0, or 1 when x is outside.
std::int32_t CurveLookup(ConstRealTable pairs, ConstIntArray points, std::int32_t curve, double x, double& y,
                         std::int32_t& n);

/// Value of a diffusion curve at x: as CurveLookup, but at the ends y takes the value of the first or last point.
///   table   M x 2*P: M curves of up to P points (input)
///   points  1..M (input)
///   curve   1..M, a material number
std::int32_t DiffusionLookup(ConstRealTable table, ConstIntArray points, std::int32_t curve, double x,
                             double& y);

/// The multiplier at time t: linear between the n pairs (time, value), constant after the last one. The table is to
/// begin at or before the first time asked for; ahead of it the first value holds.
///   pairs   1..2*n (input), n above 0
double TimeMultiplierLookup(ConstRealArray pairs, std::int32_t n, double t);

/// Values of time functions at one time, for entries i = 1..count: out(i) = multipliers(i) * Y, where Y is the value of
/// function functions(i). Entries with active(i) equal to 0 are passed over. Y begins at 0.0 and is not set back
/// between entries: at the end of a function, where no interval holds TIME, the entry takes the Y of the entry before.
///   pairs      2*D x P: D functions (input)
///   points     1..D (input)
///   functions  1..count: numbers from 1..D (input)
///   out        1..count (output)
/// Returns 0, or the number of the first function that is not defined at TIME; entries from there on are not set.
std::int32_t TimeFunctionValues(ConstRealTable pairs, ConstIntArray points, double TIME, ConstIntArray active,
                                ConstIntArray functions, ConstRealArray multipliers, Word count,
                                RealArray out);

} // namespace zurt
