// Reading of an element group of the isoparametric families: group card, data block in `A`, element cards with their
// generation, its part of the layout.
//
// The families share everything but their cards, their defaults and some words; FamilyCards says what differs.
// Called by ReadElementGroup.
#pragma once

#include "run/run.h"

namespace zurt {

/// Reads the group's cards into `group` and its data block, with echo, and adds its elements to the layout of the linear
/// system. Ends the run with the family's messages or with a deck error.
void ReadIsoparametricGroup(Run& run, ElementGroup& group);

} // namespace zurt
