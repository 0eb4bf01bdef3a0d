// The driver: start-up, the problem loop, and within it the order of the deck and of the run.
#pragma once

#include "run/job_settings.h"

#include <cstdio>

namespace zurt {

/// Runs the whole job on the console streams given: opens the deck, goes through its problems, says what stopped it if
/// something did. Returns the status of the process.
int JobDriver(const JobSettings& settings, std::FILE* consoleInput, std::FILE* consoleOutput);

} // namespace zurt
