// Cards of the 1D family: lines of 2 or 3 nodes in space, each with an area.
#pragma once

#include "elements/cards/family_cards.h"
#include "run/run.h"

namespace zurt {

/// Layouts, defaults and texts of the family.
const FamilyCards& LineCards();

/// Reads a 1D group: group card, data block, element cards, layout.
void ReadGroup1D(Run& run, ElementGroup& group);

} // namespace zurt
