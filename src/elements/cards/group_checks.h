// Numbers of a group that can't be checked while its cards are read, because what they point into comes later in the
// deck. Called at the head of every forming visit; it works once a problem.
#pragma once

#include "run/run.h"

namespace zurt {

/// Ends the run with a library error when an element of the group has no card (rows of the connectivity without nodes),
/// a source curve number lies above NQE, or a material in use lacks the conduction function or the capacity curve that
/// the kind of problem needs.
void CheckGroupIndices(Run& run, ElementGroup& group);

/// The same of a radial group: ends the run when one of its elements has no card.
void CheckRadialCards(Run& run, ElementGroup& group);

} // namespace zurt
