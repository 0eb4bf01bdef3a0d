// The banner at the head of the listing, the execution report at the end of a problem, and the clocks' hooks.
#pragma once

#include "run/run.h"

namespace zurt {

/// Written once, when the listing is opened.
void WriteBanner(Run& run);

/// Hours, minutes, seconds and hundredths of three moments. Nothing reads a clock, so the report prints zeros.
void WriteExecutionReport(Run& run);

/// At the end of a check run (IREST 0), which reads and solves nothing.
void WriteCheckReport(Run& run);

/// The points where a clock would be read; both do nothing.
void MarkReadStart(Run& run);
void MarkMatrixStart(Run& run);

} // namespace zurt
