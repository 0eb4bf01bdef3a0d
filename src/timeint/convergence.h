// The convergence test of the equilibrium iteration.
#pragma once

#include "run/run.h"

namespace zurt {

/// Euclidean norms of the three vectors of the test, taken in one sweep.
struct IterationNorms {
    double increment = 0.0; // of this iteration's increment
    double reference = 0.0; // of the reference vector
    double solution = 0.0;  // of StepSolution
};

/// One sweep over 1..n: square roots of sums of squares.
IterationNorms ComputeIterationNorms(ConstRealArray increment, ConstRealArray reference,
                                     ConstRealArray solution);

/// Tests the increment of iteration state.ITER (RHS after the solve) against the tolerances, reports on the console
/// and, in steps that are going to be printed, on the listing. Returns ConvergedFlag. `reference` is StepIncrement
/// under INTEB 1, otherwise StepSolution.
bool ConvergenceTest(Run& run, ConstRealArray increment, ConstRealArray reference, ConstRealArray solution);

} // namespace zurt
