// A pass over the steps whose flow through the inlet cross-section is recorded, and the start that such passes share.
//
// A run of a fit and both passes of the direct calculation are recorded. Masses of two runs can be compared only if both
// start alike: so each begins with the problem's initial concentrations, kept by node, under the numbering then in force.
// Called by the fit and the direct calculation and, once the input has been read, by the driver.
#pragma once

#include "run/run.h"

namespace zurt {

/// True for problems that walk through their steps more than once, under different numberings: a fit, the direct
/// calculation.
bool RunsSeveralTimes(const Run& run);

/// Room for the initial concentration of every node, 1..NP; empty for problems that run once.
RealArray RoomForStartValues(Run& run);

/// Keeps StepSolution node by node. A node without an equation keeps what its card group gave it
/// (model/initial_conditions.h).
void KeepInitialConcentrations(Run& run);

/// Puts the initial concentrations into StepSolution, those of substructured fibres into the fibres, and sets the increments, the
/// step's start and the right-hand side to zero; TIME is 0.
void RestoreInitialConcentrations(Run& run);

/// One pass; of one that had ended at the checkpoint that the run goes on from, the flows alone. One that writes results under
/// NANOCH 3 in a fit adds a row of flows to the mass file for every step that goes to the listing.
void RecordedPass(Run& run, const Pass& pass);

} // namespace zurt
