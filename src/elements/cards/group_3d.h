// Cards of the 3D family: bricks of 8 to 21 nodes.
#pragma once

#include "elements/cards/family_cards.h"
#include "run/run.h"

namespace zurt {

/// Layouts, defaults and texts of the family.
const FamilyCards& BrickCards();

/// Reads a 3D group: group card, data block, element cards, layout.
void ReadGroup3D(Run& run, ElementGroup& group);

} // namespace zurt
