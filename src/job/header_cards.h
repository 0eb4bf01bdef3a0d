// The cards that the driver reads itself, with their defaults and checks. Values go into the control record; echoes
// stand in job/header_echo.h. Layouts are public so that the manual's tables can be held against them.
#pragma once

#include "input/card.h"
#include "run/run.h"

namespace zurt {

extern const CardLayout kFormatCard;
extern const CardLayout kFirstDeviceCard;
extern const CardLayout kSecondDeviceCard;
extern const CardLayout kDegradationCard;
extern const CardLayout kBasicDataCard;
extern const CardLayout kControlCard;
extern const CardLayout kExecutionCard;
extern const CardLayout kMaterialHeaderCard;
extern const CardLayout kDeviceMaterialHeaderCard;
extern const CardLayout kBoundaryCard;

/// The title: 80 characters of the first card that is no comment.
void ReadTitle(Run& run);
/// The format card, always list-directed; sets the kind of solver and presets IPASSPRINT.
void ReadFormatCard(Run& run);
/// Device cards, and the degradation card under INDDEGR 1; taken by columns unless all cards are free (ReadImageFields).
void ReadDeviceCards(Run& run);
/// Basic data; NP not positive stops the run before any default is set. A negative NPER of a transient problem is a deck
/// error.
void ReadBasicData(Run& run);
void ReadControlCard(Run& run);
void ReadExecutionCard(Run& run);
/// What the card of one group says of the problem: sources, sources by concentration, substructures.
void NoteKindOfGroup(Run& run, const ElementGroup& group);
/// Counts of curves; under NDS the first field is MAXPMAT and the others follow from it.
void ReadMaterialHeader(Run& run);
/// NPOC and the counts of functions. IZIP positive in some group with NQE 0 stops the run.
void ReadBoundaryCard(Run& run);

} // namespace zurt
