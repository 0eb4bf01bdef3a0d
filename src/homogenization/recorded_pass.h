// A pass over the steps whose flow through the inlet cross-section is recorded: a run of a fit, and both passes of the
// direct calculation.
#pragma once

#include "run/run.h"

namespace zurt {

/// Begins from the start values (homogenization/initial_state.h). A pass that writes results under NANOCH 3 in a fit adds
/// a row of flows to the mass file for every step that goes to the listing.
void RecordedPass(Run& run, const Pass& pass);

} // namespace zurt
