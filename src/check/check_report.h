// What the check of a deck shows: findings as compilers write them, or as JSON, and the sizes of the linear systems.
#pragma once

#include "core/stop.h"
#include "run/run.h"

#include <cstdio>

namespace zurt {

/// Makes a finding of what ended the reading: the card at fault, or a message of the program's own. False for what is no
/// fault of the deck.
bool AddStop(Run& run, const RunStop& stop);

/// Writes findings in the order of the deck's lines, then a line for each problem. With `json` one object instead:
/// {"deck", "findings": [{"line", "text"}], "problems": [{"problem", "equations", "steps", ...}]}.
void WriteFindings(Run& run, bool json, std::FILE* output);

} // namespace zurt
