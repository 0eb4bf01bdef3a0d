// The small tables of mass: MASS-X.LST, MASS-Y.LST, MASS-Z.LST.
#pragma once

#include "job/run.h"

namespace zurt {

/// What a plain run writes: MASS-X.LST with the number of steps, the porosity and the head of the coefficients.
void WritePlainMassFile(Run& run);

} // namespace zurt
