// The file of prescribed values: for each problem of the deck a count card, time functions and entries, as the option
// --prescribed names it.
//
// The file is in free format whatever the deck is in. Concentrations and times are in the deck's units. Called by the job
// while a problem is read. Errors of its cards are reported as those of a deck, under the file's name.
#pragma once

#include "input/card.h"
#include "run/run.h"

namespace zurt {

extern const CardLayout kPrescribedCountCard;

/// Reads the problem's cards: NZADC and IGATH, then, with entries, the time functions and the entries. A count of 0
/// functions leaves the deck's own in force. Nothing happens without a file. Entries or an IGATH of 1 in a problem that
/// frees its held nodes (a fit, the direct calculation), and entries without any function, are deck errors. Entries at
/// nodes with an equation get a note.
void ReadPrescribedFile(Run& run);

/// Ends the run when the problem has prescribed values and does not take them: a linear steady problem reads those
/// of IGATH 1 alone, a linear transient one does not compute concentrations. Called once the kind of problem is known.
void RequireUseOfPrescribedValues(const Run& run);

/// Notes cards that are left in the file behind the last problem.
void NoteRestOfPrescribedFile(Run& run);

} // namespace zurt
