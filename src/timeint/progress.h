// How far a run has come: a line on the terminal that is written over and over, and a line a step in a file.
//
// The terminal's line stands on standard error. It is there for jobs on the command line without --quiet, and is erased
// ahead of whatever else comes to the terminal (core/terminal_line.h, TextUnit::underLine). The file is that of
// --progress. Standard output and the files of the run do not change by either. Called by the driver, by the passes over
// the steps and by the iteration.
#pragma once

#include "run/run.h"

#include <string>

namespace zurt {

/// "2:03:04" of 7384 seconds.
std::string DurationText(double seconds);

/// The run begins; `onTerminal` allows the terminal's line, where standard error is one.
void BeginProgress(Run& run, bool onTerminal);

/// A pass begins, at the step that the clock shows.
void BeginPassProgress(Run& run);

/// The terminal's line, when the last one is some tenths of a second old.
void ShowProgress(Run& run);

/// A step has been written: the line for the file, and the terminal's.
void EndStepProgress(Run& run);

} // namespace zurt
