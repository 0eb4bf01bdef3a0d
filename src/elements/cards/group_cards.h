// Reading of an element group: the card that every group has; of the isoparametric families the group card, the data
// block in `A`, the element cards with their generation, the part of the layout.
//
// The families share everything but their cards, their defaults and some words; FamilyCards says what differs.
// Called by the driver for the first card and by ReadElementGroup.
#pragma once

#include "input/card.h"
#include "run/run.h"

namespace zurt {

extern const CardLayout kGroupCard;

/// One element group card into the row of group NGE, 1..NGET.
void ReadGroupCard(Run& run, std::int32_t NGE);

/// Clears the fields of the isoparametric families, which a problem before may have set in this place.
void ClearFamilyFields(ElementGroup& group);

/// Reads the group's cards into `group` and its data block, with echo, and adds its elements to the layout of the linear
/// system. Ends the run with the family's messages or with a deck error.
void ReadIsoparametricGroup(Run& run, ElementGroup& group);

} // namespace zurt
