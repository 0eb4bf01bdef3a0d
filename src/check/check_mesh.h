// The check of a mesh that has been read: every Jacobian, elements without a card, nodes without an element, nodes at one
// place. Called by job/read_problem under --check, ahead of what would end the run at the first fault.
#pragma once

#include "run/run.h"

namespace zurt {

/// Adds what it finds to run.check.
void CheckMesh(Run& run);

} // namespace zurt
