// The two ways in which a run ends before its time.
//
// A message of the program's own goes to its unit first and then StopRun ends the process as a normal end does.
// What the input library has to report (a field that does not convert, the end of the deck, a file that can't be
// opened) goes to standard error and ends with status 2. Both flush what was written, so listing and messages
// survive up to their last record.
#pragma once

#include <string>

namespace zurt {

/// Flushes every open file and ends the process with status 0.
[[noreturn]] void StopRun();

/// Exit status of everything that the input and output library reports.
constexpr int kLibraryErrorStatus = 2;

/// Flushes every open file, writes "zurt: error: " and `text` to standard error, ends with status 2.
[[noreturn]] void StopWithLibraryError(const std::string& text);

/// Writes "zurt: note: " and `text` to standard error: behaviour that is required and yet bound to surprise.
void WriteNote(const std::string& text);

} // namespace zurt
