// Gauss points under fibres: which lie in fluid, which elements and nodes take part, and the record that each point
// keeps of its nearest fibre.
//
// Lengths are in the mesh's unit. Called by the fibre step, once a problem for every plane or space group.
#pragma once

#include "microscale/fibre_search.h"
#include "run/fibre_set.h"
#include "run/run.h"

namespace zurt {

/// What the point X keeps of its nearest fibre. A wall distance of 1e-10 or less is in the fibre: kInFibre, no set, no
/// axes. A point that sees no fibre has set 0.
void FillGaussRecord(const FibreSearch& search, const NearestFibre& nearest, const double (&X)[3],
                     GaussFibreRecord& record);

/// One pass over the elements of a group: adds to VOLFLUID and totalVolume, sets the group's element marks and records,
/// and adds one to the mark of each node of a marked element.
///   nodeMarks  1..NP (in and out)
/// Ends the run with a library error when the records of the group would not fit a reasonable memory.
template <int Family>
void ClassifyGaussPoints(Run& run, FibreModel& model, const FibreSearch& search, const ElementGroup& group,
                         IntArray nodeMarks);

/// Records at the points where the group's fluxes are evaluated (elements/forming/element_fluxes.h), if its own points are others:
/// those of all elements, in the order of that rule. Ends the run likewise.
template <int Family>
void FillFluxRecords(Run& run, FibreModel& model, const FibreSearch& search, const ElementGroup& group);

} // namespace zurt
