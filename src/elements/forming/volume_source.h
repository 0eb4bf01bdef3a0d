// Volumetric sources of the elements of a group.
//
// Only groups with IZIP 1 have a load: an element's curve gives the source over time. With a single source function the
// value of all elements is its mean rate over the step, with several functions the plain value of the element's curve.
// Under IZIP 2 no element has a curve number, so none has a load. Called by the element loops.
#pragma once

#include "model/function_tables.h"
#include "run/run.h"

namespace zurt {

struct VolumeSource {
    FunctionTable functions;
    ConstIntArray curves; // 1..NET, empty when no element has a load
    bool oneFunction = false;
    std::int32_t group = 0; // its number, for messages
};

/// The sources of a group at this visit; the mean rate over the step, when there is one function, goes to the QV that the group holds (run.visits).
/// Stops the run when the function is not defined at the start or the end of the step.
VolumeSource BeginVolumeSource(Run& run, const ElementGroup& group);

/// Curve number of element n, 0 for none; its source then stands in held.QV. Stops the run when the curve is not defined at
/// TIME.
std::int32_t ElementSource(Run& run, const VolumeSource& source, Word n, HeldCurveValues& held);

} // namespace zurt
