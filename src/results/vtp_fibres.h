// The fibres of a problem for viewers: NAME-fibres.vtp, lines and points with their radius.
#pragma once

#include "run/run.h"

namespace zurt {

/// Writes the fibres of all sets, as the box of the device cards left them, and the radial fibres: lines as lines, spheres
/// and radial fibres as points. Points have `radius`; cells `kind` (0 line, 1 sphere, 2 radial), `set` (of a radial fibre its
/// group), `fibre` (its number on the card) and `length`. No file without fibres. Ends the run with a library error when it can't be written.
void WriteVtpFibres(Run& run);

} // namespace zurt
