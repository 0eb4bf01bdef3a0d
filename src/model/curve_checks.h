// Checks of the tables of a deck as they are read: deck errors and notes on points that are likely not meant. Look-ups take
// the first interval that holds an argument, whatever the order of the points.
#pragma once

#include "input/deck.h"

#include <string>
#include <vector>

namespace zurt {

/// Points of a table as read, 1..n at 0..n-1.
struct TablePoints {
    std::vector<double> arguments, values;
};

/// Notes the first place where the arguments do not rise. `what`: "of function 3", for one.
void NoteIfNotRising(Deck& deck, const char* group, const char* field, const TablePoints& points,
                     const std::string& what);

/// Coefficients below 0 at concentrations that a sound solution has (0 and above) are a deck error, at others they get a note.
/// The value at 0 counts where an interval holds it.
void CheckCoefficients(Deck& deck, const char* group, const char* field, const TablePoints& points,
                       const std::string& what);

} // namespace zurt
