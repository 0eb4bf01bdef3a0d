// The solution of one problem that has been read: plainly, or repeated by a fit or by the direct calculation.
//
// Called by the driver behind ReadProblem.
#pragma once

#include "run/run.h"

namespace zurt {

/// Walks through the steps of the problem, once (with the rescaled curve for a plain run of the equivalent medium), twice
/// for the direct calculation (IDIRECTD 1), or as often as the fit needs (NFIT 1). Writes notes, results and mass files.
void SolveProblem(Run& run);

} // namespace zurt
