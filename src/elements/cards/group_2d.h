// Cards of the 2D family: quadrilaterals of 4 to 9 nodes, plane or, under INDAX, axisymmetric.
#pragma once

#include "elements/cards/family_cards.h"
#include "run/run.h"

namespace zurt {

/// Layouts, defaults and texts of the family.
const FamilyCards& QuadrilateralCards();

/// Reads a 2D group: group card, data block, element cards, layout.
void ReadGroup2D(Run& run, ElementGroup& group);

} // namespace zurt
