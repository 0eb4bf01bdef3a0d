// The start of a run that is to be repeated: initial concentrations by node, whatever the numbering.
//
// Masses of two runs can be compared only if both start alike. So every run of a fit and the second pass of the direct
// calculation begin with the problem's initial concentrations, under the numbering then in force. Called by the
// homogenization and, once the input has been read, by the driver.
#pragma once

#include "run/run.h"

namespace zurt {

/// True for problems that walk through their steps more than once, with and without an equation at every node: a fit, the
/// direct calculation.
bool RunsSeveralTimes(const Run& run);

/// Keeps StepSolution node by node. A node without an equation keeps what its card group gave it
/// (model/initial_conditions.h).
void KeepInitialConcentrations(Run& run);

/// Puts the initial concentrations into StepSolution, those of substructured fibres into the fibres, and sets the increments, the
/// step's start and the right-hand side to zero; TIME is 0.
void RestoreInitialConcentrations(Run& run);

} // namespace zurt
