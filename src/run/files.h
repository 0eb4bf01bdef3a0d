// The files that a run opens, and the console dialogue for their names. A job on the command line takes the names that the
// dialogue offers, in its folder.
//
// In the dialogue a name is the first 20 characters of a console line; a blank answer takes the default. The end of the console input
// and a file that can't be opened end the run as library errors.
#pragma once

#include "run/job_settings.h"
#include "run/run.h"

#include <array>
#include <string>

namespace zurt {

/// Asks for the deck's name, derives the default names of listing and graphics file, opens the deck and the work files
/// ("ZITEMP" and two scratch files).
void OpenInputDeck(Run& run);

/// The same for a job on the command line: nothing is asked. Makes the folder of the outputs; an output that is the deck,
/// and without `force` one that exists, is a library error, before anything is written.
void OpenNamedDeck(Run& run, const JobSettings& settings);

/// Opens the deck for its check: no output is opened, then or later.
void OpenDeckToCheck(Run& run, const JobSettings& settings);

/// Asks for the listing's name, with the overwrite question for a file that exists, and opens unit 3.
void OpenListing(Run& run);

/// The same for the graphics file, unit 18.
void OpenGraphics(Run& run);

/// Connects MESSAGES.LST (once a run; later problems go on in it) and writes a record of six blanks.
void OpenMessages(Run& run);

/// Flushes the outputs and the console.
void FlushUnits(Run& run);

/// The files that grow with the steps: a checkpoint has their places.
std::array<TextUnit*, kContinuedUnits> ContinuedUnits(Units& units);
/// And their names in a job on the command line, in a problem of the deck.
std::array<std::string, kContinuedUnits> ContinuedNames(const Units& units, std::int32_t problem);

/// A file of the run, with its folder, is whole and not touched again: checkpoints see to it that it is on the disk, and a run
/// that goes on, that it is still there.
void FinishFile(Units& units, const std::string& name);

/// After a "STOP" card: closes the deck and all outputs.
void CloseUnits(Run& run);

} // namespace zurt
