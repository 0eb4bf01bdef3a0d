// Results for ParaView and other viewers that read VTK's XML files: NAME-NNNN.vtu for step NNNN, and NAME.pvd, which lists them
// with their times.
#pragma once

#include "run/run.h"

namespace zurt {

/// In a run that goes on from a checkpoint: of the files for viewers those stay that had been written then, and the .pvd file lists
/// them.
void GoOnWithVtu(Run& run);

/// Writes the step in hand and lists it in the .pvd file; with the first step of a problem also the fibres (results/vtp_fibres.h),
/// and with the first one of a run the files that an earlier run left under these names go. Called ahead of the other writers of a step, which
/// set small values to 0: here all values are as computed. Ends the run with a library error when a file can't be written.
void WriteVtuStep(Run& run);

} // namespace zurt
