// The command line: zurt [options] DECK. Without arguments the console dialogue asks for the file names.
#pragma once

#include "run/job_settings.h"

#include <optional>

namespace zurt {

/// What the arguments ask for; nothing when they have been answered already (help, version, a fault in them), with the
/// status of the process in `status`.
std::optional<JobSettings> ReadCommandLine(int argc, const char* const* argv, int& status);

} // namespace zurt
