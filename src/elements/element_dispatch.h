// The one entry by which the driver and the time loop reach the element families.
#pragma once

#include "job/run.h"

namespace zurt {

constexpr std::int32_t kReadPhase = 1;
constexpr std::int32_t kFormPhase = 2;
constexpr std::int32_t kEmptyPhase = 3;

/// Visits one group. NETIP 1, 2, 3 selects the isoparametric family of that dimension, every other value the radial
/// fibre family. `phase`: kReadPhase reads the group's cards and lays out its data block in `A`; kFormPhase forms and
/// assembles the elements, or, while state.ResultsPhaseFlag is 1, adds their fluxes to the nodes; kEmptyPhase does
/// nothing; any other value acts as kReadPhase. The last group read (NGE not below NGET) finishes MAXA and NWK,
/// unless the run is in sparse mode.
void DispatchElementPhase(Run& run, ElementGroup& group, std::int32_t NETIP, std::int32_t phase);

} // namespace zurt
