// Time functions: tabulated curves that scale prescribed values over time.
//
// ReadTimeFunctions is called once a problem by the driver, under its conditions; EvaluateTimeFunctions at every step
// with prescribed values. Times are in the units of the deck.
#pragma once

#include "input/card.h"
#include "run/run.h"

namespace zurt {

extern const CardLayout kTimeFunctionCountCard;

/// Reads NTABFT, MAXTFT and the functions from `source`; takes their table at LTFT1 and the points per function at LTFT2. A function
/// must reach TIME, which holds the end of the run at this stage. Too many points, a function that ends early and a
/// full working vector stop the run.
void ReadTimeFunctions(Run& run, const CardSource& source);

/// out(i) = multipliers(i) times function functions(i) at the current TIME, for i = 1..count with active(i) not 0
/// (see TimeFunctionValues). Stops the run when a function is not defined at TIME. Function numbers lie in 1..NTABFT.
void EvaluateTimeFunctions(Run& run, RealArray out, ConstIntArray active, ConstIntArray functions,
                           ConstRealArray multipliers, Word count);

/// Points of each time function, and their table of pairs.
inline IntArray TimeFunctionPoints(const Run& run) {
    return IntSection(run.A, run.control.at.LTFT2, run.control.counts.NTABFT);
}
inline RealTable TimeFunctionPairs(const Run& run) {
    const CurveCounts& counts = run.control.counts;
    return RealTableSection(run.A, run.control.at.LTFT1, 2 * Word{counts.NTABFT}, counts.MAXTFT);
}

} // namespace zurt
