// The homogenization: runs of the model with fibres and of an equivalent medium, until both pass the same mass.
//
// One run is a walk of the time loop from time zero. Up to two parameters are fitted, one after the other: the D-C curve
// of the last material and the equivalent wall distance HEQ. Each direction of the card has a fit of its own; the last
// one ends with a run over all steps that writes results. Called by the driver once all input has been read and the
// storage laid out. Lengths are in the mesh's unit.
#pragma once

#include "homogenization/fitted_curve.h"
#include "run/run.h"

namespace zurt {

/// All of it. Messages go to the console.
void RunHomogenization(Run& run);

/// Head of a run of the fit: updates the parameters by the masses of the run before and writes the message. When the fit
/// ends here (IFITEND 1) there is no run.
void BeginFitRun(Run& run, const FittedCurve& curve);

/// Tail of a run: after a run with fibres switches to the equivalent medium, under its own numbering.
void EndFitRun(Run& run, const FittedCurve& curve);

} // namespace zurt
