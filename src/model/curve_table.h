// The shared reader of function tables: for each function a header card and its points, one card each.
//
// Called by ReadTimeFunctions and ReadFunctionTables. The layout of the table is that of pairs (model/curve_lookup.h).
#pragma once

#include "input/card.h"
#include "run/run.h"

namespace zurt {

struct FunctionHeaderCard {
    std::int32_t F = 0; // function number
    std::int32_t N = 0; // number of points
};

struct FunctionPointCard {
    double ARGUMENT = 0.0;
    double VALUE = 0.0;
};

extern const CardLayout kFunctionHeaderCard;
extern const CardLayout kFunctionPointCard;

/// How the reading ended; functionNumber 0: all functions were read.
struct CurveTableResult {
    std::int32_t functionNumber = 0; // of the function at which it ended early
    std::int32_t pointsRead = 0;     // points on that function's header card
    bool endsEarly = false;          // true: its last argument lies below TMAX; false: it has too many points
    double lastArgument = 0.0;       // with endsEarly
};

/// Reads `functions` functions from `source`.
///   points   1..functions: points of each function (output, cleared first)
///   pairs    2*functions x largest (output, cleared first)
///   TMAX     with checkCoverage the last argument of a function must not lie below it
/// Returns at once, the rest unread, at a function with more points than `largest` and at one that ends ahead of TMAX.
/// A function number outside 1..functions, and a function without any point where its first or last point is needed,
/// are deck errors.
CurveTableResult ReadCurveTable(Run& run, const CardSource& source, IntArray points, RealTable pairs,
                                std::int32_t functions, std::int32_t largest, double TMAX,
                                bool checkCoverage);

} // namespace zurt
