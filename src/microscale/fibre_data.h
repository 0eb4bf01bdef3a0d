// Cards of the fibre sets: sets, search boxes, fibres and their points, correction factor tables.
//
// Called once a problem by the driver, behind the homogenization card, when NSETS is above 0. Points and sizes are in the
// mesh's unit of length.
#pragma once

#include "input/card.h"
#include "run/fibre_set.h"
#include "run/run.h"

namespace zurt {

extern const CardLayout kFibreSetCard;
extern const CardLayout kSearchBoxCard;
extern const CardLayout kSearchGridCard;
extern const CardLayout kFibreCard;
extern const CardLayout kFibrePointCard;

/// Reads NSETS fibre sets into model.sets, dropping what the model held, with their echo. Deck errors: fibre sets in a
/// deck without device cards (which give the box of the fibres) or with a box without size; a set without fibres, of
/// another type than line or sphere, without a diameter, or with its search box inside out; IANISY above 1; a line with
/// fewer than two points or with two equal ones, a sphere without a point; a length too large to calculate with.
/// Everything is read card by card: a count that the deck can't hold meets the end of the deck.
void ReadFibreData(Run& run, FibreModel& model);

} // namespace zurt
