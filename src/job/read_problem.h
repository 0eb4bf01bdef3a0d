// The input of one problem: cards in the order of the deck, and with them the shares of the working vector.
//
// Called by the driver for every problem; the deck, the console and A are there.
#pragma once

#include "run/run.h"

namespace zurt {

/// Reads all cards of the next problem, opens the outputs that they ask for, lays out A, numbers equations, finds the
/// heights of columns and sets the start values. Nothing of an earlier problem's model or fit is left but
/// the fields of cards. Ends the run when an array does not fit A.
void ReadProblem(Run& run);

} // namespace zurt
