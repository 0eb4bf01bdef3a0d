// Correction factor at a distance from a wall and a concentration: linear in both. A kernel without any state.
//
// Distances are in the mesh's unit, concentrations molar, factors without a unit. Called at every Gauss point of fibre
// models and by the homogenization.
#pragma once

#include "run/fibre_set.h"

namespace zurt {

/// The factor at concentration c and distance d.
///   distance       1..NDIST, NDIST at least 1
///   concentration  1..NCONC, NCONC at least 1
///   factor         NDIST x NCONC
/// At or beyond the last row there is no wall effect: 1. At or below the first row the first row's factors hold. A
/// distance that meets a row belongs to the interval below it. A concentration outside the columns takes the nearest
/// one; between columns that do not rise the last interval that holds it decides, and where none does the factor is 1.
double LookupCorrectionFactor(ConstRealArray distance, ConstRealArray concentration, ConstRealTable factor,
                              double c, double d);

/// The same from a record, to the last bit; a table that is not there gives 1. Where rows and columns rise an interval is
/// found by counting, without a branch that depends on the data.
double LookupCorrectionFactor(const CorrectionTable& table, double c, double d);

/// Whether distances and concentrations rise from each to the next: what `rising` of the record says.
bool RowsAndColumnsRise(const CorrectionTable& table);

} // namespace zurt
