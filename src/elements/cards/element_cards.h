// The element cards of a group of the isoparametric families: numbers, generation, field rules, echo.
//
// Called by ReadIsoparametricGroup with the group's data block laid out and cleared; the radial family shares a message.
#pragma once

#include "elements/cards/family_cards.h"
#include "run/run.h"

namespace zurt {

/// Reads cards until as many elements as the group has have been read or generated; a group of 0 elements has no
/// cards. A card writes into the row of its number; numbers may repeat and leave gaps, only the count ends the reading.
void ReadElementCards(Run& run, const ElementGroup& group, const FamilyCards& family);

/// Ends the run with the message of an element number above NET; `family` is the family's name ("3D").
[[noreturn]] void StopOnElementNumber(Run& run, const char* family, Word number, std::int32_t NET);

/// Ends the run with the message of a material number above NMATT; `label` is the family's text for the number.
[[noreturn]] void StopOnMaterial(Run& run, const TwinText& label, std::int32_t material);

} // namespace zurt
