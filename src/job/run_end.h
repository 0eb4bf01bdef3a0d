// What a run says at its end: why it stopped, how far it came, and which of its files hold something.
#pragma once

#include "core/stop.h"
#include "run/job_settings.h"
#include "run/run.h"

namespace zurt {

/// Notes that lead to the cause, then one line on standard error (for an error of the deck its report), behind all that was written.
/// Returns the status that
/// a job on the command line has for it.
int ReportStop(Run& run, const RunStop& stop);

/// Stores what was written and, in a job on the command line, names the files on the console. Returns the status of the
/// process: kFailed when something could not be stored.
int EndOfRun(Run& run, const JobSettings& settings, int status);

} // namespace zurt
