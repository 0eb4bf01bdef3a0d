// The equilibrium iteration of one step.
#pragma once

#include "run/run.h"

namespace zurt {

/// Iterates until the convergence test passes; a linear problem (NonlinearFlag 0) takes one solve, whose result stays
/// in RHS. Every iteration forms and factors the matrix anew. After MAXIT iterations without convergence the run
/// stops with the messages on listing and MESSAGES.LST.
void IterateStep(Run& run);

} // namespace zurt
