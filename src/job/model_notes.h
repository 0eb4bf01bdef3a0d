// Notes on a model as read: what the deck gives and nothing uses, and what is likely not meant. Once a problem, counted.
#pragma once

#include "run/run.h"

namespace zurt {

/// Called by the driver behind the input of a problem.
void WriteModelNotes(Run& run);

} // namespace zurt
