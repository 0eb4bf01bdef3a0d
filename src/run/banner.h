// The banner at the head of the listing, the execution report at the end of a problem, and the clocks' hooks.
#pragma once

#include "run/run.h"

namespace zurt {

/// The banner, written once, when the listing is opened.
void WriteBanner(Run& run);

/// Hours, minutes, seconds and hundredths of three moments, all 0: no clock is read.
void WriteExecutionReport(Run& run);

/// The report of a check run (IREST 0), which reads the problem and solves nothing.
void WriteCheckReport(Run& run);

/// Dormant: the points where a clock would be read.
inline void MarkReadStart() {}
inline void MarkMatrixStart() {}

} // namespace zurt
