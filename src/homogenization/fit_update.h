// One iteration of a fit: the next value of the parameter from the masses of the last two runs.
//
// Both searches look for the root of DMASS = MASSEHM - MASSFIB: a first relative step, growth of the step by 5 while
// the sign stays, bisection as soon as both signs have been seen (which then also is when the search may end). They work
// on the record alone; running the model is the caller's (homogenization/run_homogenization.h). Lengths are in the
// mesh's unit, coefficients and masses in the deck's.
#pragma once

#include "run/fit_state.h"

namespace zurt {

/// Next HEQ, at ITERFIT 2 and above; never below 0.6 nm. At the end of the search IFITEND is 1 and HEQDIR of the
/// direction INDDEG has the result. `moleculeRadius` bounds the steps of a search with IDIAM 1.
void UpdateHeq(FitState& fit, double moleculeRadius);

/// Next DCTRY, at ITERFIT 2 and above, for a curve whose first value now is `firstOfCurve`. At the end of the search
/// IDCEND is 1 and DCFIT1, DCFIT2, D1DIR and D2DIR have the result.
void UpdateCurveStart(FitState& fit, double firstOfCurve);

} // namespace zurt
