// How large the linear systems of a problem are for each solver, and how many operations they take.
//
// Counted from the couplings of all elements under the numbering in force, whatever solver the run has. Called by the check
// of a deck.
#pragma once

#include "run/run.h"

namespace zurt {

SystemSize SystemSizeOf(const Run& run);

} // namespace zurt
