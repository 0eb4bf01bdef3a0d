// Checkpoints: the state of a run between two steps, from which the same run goes on when it was ended before its time.
//
// A run that goes on reads its deck again, with its files closed, and goes through the same passes, but does not solve those
// that had ended. Of these a fit needs the flows alone, which the checkpoint has: they lead it to the same runs and values.
// At the step of the checkpoint it takes over what steps leave to the next one: clock and counters, what lookups keep, and all
// words of `A` but those of the matrix, which every iteration makes anew. Its files are cut to where they stood and written
// on from there. So all that it writes is what the run would have written without an end in between, to the byte.
// The deck, the program's version and the options that change results must be those of the checkpoint. Called by the
// driver and by the passes over the steps.
#pragma once

#include "run/run.h"

namespace zurt {

/// Takes the checkpoint that options.restart names; nothing without one. Stops with a library error when it is not a whole
/// checkpoint of this deck, version and options, or when a file of the run is not the one that it was. Called once, when
/// the deck has been opened.
void OpenCheckpoint(Run& run);

/// A pass over the steps is next. True when it had ended as the checkpoint was written.
bool NextPassHasEnded(Run& run);

/// Where the flows of the pass in work stand, once it has ended.
PassFlows& FlowsOfPass(Run& run);

/// In the pass of the checkpoint, which has begun: it stands behind the checkpoint's step; in other passes nothing.
void GoOnFromCheckpoint(Run& run);

/// Writes a checkpoint when options.checkpoint steps have been solved since the last one, but not at the end of a pass. What was written there
/// before is replaced once the new one is on the disk; when that fails it stays, a note says so, and the run goes on.
void WriteCheckpointIfDue(Run& run);

} // namespace zurt
