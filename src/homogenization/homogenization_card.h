// The first card of the fibre data, which stands in every deck: what to homogenize and how.
#pragma once

#include "input/card.h"
#include "run/run.h"

namespace zurt {

extern const CardLayout kHomogenizationCard;
extern const CardLayout kCurveEndsCard;

/// Reads the card and, when IDCSF is not 1 and IDCC is 0, the card of D1D and D2D; normalises the fields, sets the
/// active directions and echoes what the listing shows of them.
void ReadHomogenizationCard(Run& run);

} // namespace zurt
