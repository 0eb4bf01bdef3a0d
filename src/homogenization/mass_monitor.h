// Flow of mass through the inlet cross-section, step by step.
//
// The cross-section of a direction is the plane where its coordinate is 0 when elements stand on both sides of it, else
// the mesh's lowest plane. The flow through it is the sum, over the plane's nodes and the elements on its high side, of
// conduction and capacity over the step less the source: what goes in equals what is stored behind the plane plus what
// leaves, to rounding (the nodal balance of the finite element equations; Hughes et al., J. Comput. Phys. 163 (2000)
// 467-488). Flows are in units of amount over time. Called by the time loop in a fit and in the direct calculation.
#pragma once

#include "run/run.h"

namespace zurt {

/// Both tables for NDT steps (at least 1), all zero; no cross-section is known.
void BeginMassTables(Run& run);

/// Takes the flow of step KOR through the cross-section of direction INDDEG into the table of the model that runs:
/// FLUXMICRO with IEHM 0, else FLUXEQUIV.
void RecordFlow(Run& run);

/// True for a mass that is zero but for rounding, measured by what the box around the mesh would hold at the largest start
/// value.
bool IsMassOfRounding(const Run& run, double mass);

/// Mass of a run over its first `steps` steps: the absolute value of the sum of flow times step size. A step of a steady
/// problem counts as one unit of time.
double MassOfRun(const Run& run, const std::vector<double>& flux, std::int32_t steps);

} // namespace zurt
