// What a fit says on standard error when a search ends without a result.
#pragma once

#include "run/run.h"

namespace zurt {

/// Notes which search of direction INDDEG has ended at its limit of iterations: the values tried and their errors, what the mass
/// file shows instead, and what helps. Called after the last run of the search.
void NoteSearchWithoutResult(const Run& run);

} // namespace zurt
