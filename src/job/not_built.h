// The one way in which a run ends at a feature that its deck asks for and this program does not have yet.
#pragma once

#include "job/run.h"

namespace zurt {

/// Writes "zurt: WHAT not built yet" (`what` brings its own verb, "2D element groups are") to the listing and to
/// standard error and ends the run with status 2.
[[noreturn]] void StopNotBuilt(Run& run, const char* what);

} // namespace zurt
