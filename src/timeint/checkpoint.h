// Checkpoints: the state of a plain run between two steps, from which the same run goes on when it was ended before its time.
//
// A run that goes on reads its deck again, with its files closed; problems that had been solved are not solved again. At
// the step of the checkpoint it takes over what steps leave to the next one: clock and counters, what lookups keep, and all
// words of `A` but those of the matrix, which every iteration makes anew. Its files are cut to where they stood and written
// on from there. So all that it writes is what the run would have written without an end in between, to the byte.
// The deck, the program's version and the options that change results must be those of the checkpoint. Called by the
// driver and by the plain pass.
#pragma once

#include "run/run.h"

namespace zurt {

/// Takes the checkpoint that options.restart names; nothing without one. Stops with a library error when it is not a whole
/// checkpoint of this deck, version and options, or when a file of the run is not the one that it was. Called once, when
/// the deck has been opened.
void OpenCheckpoint(Run& run);

/// True in a problem that had been solved when the checkpoint was written.
bool IsSolvedAlready(const Run& run);

/// In the problem of the checkpoint: the pass that has begun stands behind the checkpoint's step; elsewhere nothing.
void GoOnFromCheckpoint(Run& run);

/// Writes a checkpoint when the step is one of every options.checkpoint and not the last of its pass. What was written there
/// before is replaced once the new one is on the disk; when that fails it stays, a note says so, and the run goes on.
void WriteCheckpointIfDue(Run& run);

} // namespace zurt
