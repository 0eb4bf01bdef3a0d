// Reading of an element group of the isoparametric families: group card, data block in `A`, element cards with their
// generation, column heights.
//
// The families share everything but their cards, their defaults and some words; FamilyCards says what differs.
// Called by ReadElementGroup.
#pragma once

#include "run/run.h"

namespace zurt {

/// Reads the group's cards into `group` and its data block, with echo, and raises the column heights by the group's
/// connectivity unless the run is in sparse mode. Ends the run with the family's messages or with a deck error.
void ReadIsoparametricGroup(Run& run, ElementGroup& group);

/// After the last group, whatever its family: the slot of the heights becomes MAXA, NWK is set. Stops the run
/// when LMAX has passed the end of `A`.
void FinishColumnPointers(Run& run);

} // namespace zurt
