// Notes on a model as read: data of the deck that nothing uses, and data that are likely not meant. Written once a
// problem, with their count.
#pragma once

#include "run/run.h"

namespace zurt {

/// Called by the driver behind the input of a problem.
void WriteModelNotes(Run& run);

} // namespace zurt
