// What a step without equilibrium says on standard error: whether the increments still fall or have stopped
// falling at the level of rounding, and what helps then.
#pragma once

#include "run/run.h"

namespace zurt {

/// Called when a step has reached MAXIT, ahead of the stop.
///
/// Increments that stop falling far below the step's own are rounding: the residual is a sum of products K T that cancel, so it is
/// known to about eps max K |T| alone, and no iteration corrects that. Elements much longer than wide and of a large coefficient
/// D have the largest entries, about D times their length over their width.
void NoteNoEquilibrium(Run& run);

} // namespace zurt
