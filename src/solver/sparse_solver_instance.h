// The stages of one sparse solve on the solver's own instance structure.
//
// The instance is a plain record of the solver's C interface; IRN, JCN, A and RHS in it belong to these routines. Its
// arrays ICNTL and INFO are counted from one in the solver's documents and from zero in C. Callers: SolveSparseSystem,
// in the order of the declarations; the exchange files; the benchmarks. SolverReportFlag 1 writes a line to the
// console at the head of each stage.
#pragma once

#include "core/array_view.h"
#include "core/text_unit.h"

#include <dmumps_c.h>

namespace zurt {

/// Starts the message passing layer and the instance and takes the arrays: NZ entries each for IRN, JCN and A, N for
/// RHS, none for a count that is not positive.
void SolverStart(DMUMPS_STRUC_C& instance, std::int32_t N, std::int32_t NZ, TextUnit& console,
                 std::int32_t SolverReportFlag);

/// The settings that depart from the solver's defaults: its own output off, 120 percent of added working space. The
/// ordering stays the solver's own choice. The instance must exist.
void SetSolverControls(DMUMPS_STRUC_C& instance);

/// Analysis and factorisation of the matrix in IRN, JCN and A. Any INFO(1) but 0 behind the factorisation is reported
/// on console and listing and stops the run.
void SolverFactor(DMUMPS_STRUC_C& instance, TextUnit& console, TextUnit& listing,
                  std::int32_t SolverReportFlag);

/// R, 1..N, in: right-hand side, out: solution.
void SolverBackSolve(DMUMPS_STRUC_C& instance, RealArray R);

/// Ends the instance, frees its arrays and ends the message passing layer.
void SolverStop(DMUMPS_STRUC_C& instance, TextUnit& console, std::int32_t SolverReportFlag);

} // namespace zurt
