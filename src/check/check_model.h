// The check of a problem that has been read whole: curves against start values, held nodes, parts of the mesh that nothing
// holds, numbers that a run would refuse, the size of its linear systems. Called by job/read_problem under --check.
#pragma once

#include "run/run.h"

namespace zurt {

/// Adds what it finds to run.check, and the sizes.
void CheckModel(Run& run);

} // namespace zurt
