// The first card of the fibre data, which stands in every deck: what to homogenize and how; and the state of a fit while a
// problem is read. Called by the job.
#pragma once

#include "input/card.h"
#include "run/run.h"

namespace zurt {

extern const CardLayout kHomogenizationCard;
extern const CardLayout kCurveEndsCard;

/// A problem begins without the fit of the one before. The card keeps its fields, which a free format card may leave out; IEHM
/// and INDDEG are as that fit left them.
void ForgetFit(Run& run);

/// Reads the card and, when IDCSF is not 1 and IDCC is 0, the card of D1D and D2D; normalises the fields, sets the
/// active directions and echoes what the listing shows of them. The fit begins with IEHM and INDDEG of the card.
void ReadHomogenizationCard(Run& run);

/// The wall distance that the fibre step has found is where HEQ starts; in space, HEQ0 and HEQDIR too.
void TakeHeqStart(Run& run);

} // namespace zurt
