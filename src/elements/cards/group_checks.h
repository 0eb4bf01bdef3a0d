// Numbers of a group that can't be checked while its cards are read, because what they point into comes later in the
// deck. Called once a problem, ahead of the first visit of the group (elements/forming/element_visit.h).
#pragma once

#include "run/run.h"

namespace zurt {

/// Ends the run with a library error when an element of the group has no card (rows of the connectivity without nodes),
/// a source curve number lies above NQE, or a material in use lacks the conduction function or the capacity curve that
/// the kind of problem needs. Of radial groups the cards of the elements alone are looked at.
void CheckGroupCards(const Run& run, const ElementGroup& group);

} // namespace zurt
