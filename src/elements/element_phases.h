// The entries by which the job and the time loop reach the element families: a group is read, formed, evaluated.
#pragma once

#include "run/run.h"

namespace zurt {

/// Reads the group's cards and lays out its data block in `A`. NETIP is the number of an isoparametric
/// family (geometry/element_family.h), every other value means radial fibres. The last group (NGE not below NGET) finishes MAXA and NWK, unless the
/// run is in sparse mode.
void ReadElementGroup(Run& run, ElementGroup& group);

/// Forms the elements of the group and adds them to the system.
void FormElementGroup(Run& run, const ElementGroup& group);

/// Adds the fluxes and coefficients of the group's elements to the nodal sums, which group 1 clears. Nothing under
/// NDS 0, where there are no nodal vectors, and for radial fibres.
void AddGroupResults(Run& run, const ElementGroup& group);

} // namespace zurt
