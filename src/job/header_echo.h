// Echo of the header cards on the listing, after defaulting.
#pragma once

#include "run/run.h"

namespace zurt {

/// Cards up to the basic data, in one block: `titleCard` and `formatCard` are the numbers of those cards.
void EchoHeaderCards(Run& run, std::int32_t titleCard, std::int32_t formatCard);
void EchoControlCard(Run& run);
void EchoExecutionCard(Run& run);
/// The row of one group; `first` is the card's number.
void EchoGroupCard(Run& run, const ElementGroup& group, std::int32_t first);
void EchoMaterialHeader(Run& run, std::int32_t first);
void EchoBoundaryCard(Run& run, std::int32_t first);

} // namespace zurt
