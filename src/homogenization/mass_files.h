// The small tables of mass: MASS-X.LST, MASS-Y.LST, MASS-Z.LST.
//
// Each direction has its file. A plain run has that of X alone; a fit and the direct calculation have those of their
// directions. What goes to a file that is not open is dropped.
#pragma once

#include "run/run.h"

namespace zurt {

/// What a plain run writes: MASS-X.LST with the number of steps, the porosity and the head of the coefficients.
void WritePlainMassFile(Run& run);

/// Opens the files of all directions that are to be fitted, and that of INDDEG. In the direct calculation each gets the
/// heads of a plain run's file at once; their count lines all go to the file of X, and only its own has the porosity.
void OpenMassFiles(Run& run);

/// Direct calculation, one step of the first pass, to the file of INDDEG: concentration, the first material's
/// coefficient there, equivalent coefficient.
void WriteDirectRow(Run& run, double concentration, double bulk, double equivalent);

/// Direct calculation, after its last pass, to the file of INDDEG: FLUXMICRO and FLUXEQUIV of all steps.
void WriteMassChange(Run& run);

/// At the end of a direction's fit, to the file of INDDEG: the fitted parameters, and the head of the flows that the
/// last run of a problem with NANOCH 3 writes below.
void PrintFittedParameters(Run& run);

/// One row under that head: the number of the result, TIME and FLUXEQUIV of that number.
void WriteFlowRow(Run& run, std::int32_t result);

} // namespace zurt
