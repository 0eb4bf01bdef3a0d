// One sparse solve: from the entries in the sparse assembler and a right-hand side to the solution.
//
// The work is done by MUMPS, in its sequential form on one process. The system is handed over as a general
// unsymmetric one with both triangles. Nothing is kept from one solve to the next: instance, analysis and factors are
// made anew each time. Caller: solver/system_sparse. Messages stand in English only.
#pragma once

#include "core/array_view.h"
#include "core/text_unit.h"

namespace zurt {

struct SparseTree;

/// Solves the assembled system and leaves the tree killed.
///   R        1..JEDN, in: right-hand side, out: solution
///   reserved handed in as 0, not consulted
///   SolverReportFlag  1 writes a line to the console ahead of each stage
/// Stops the run with a message on the console when there are no equations or no entries, and with the state of the
/// solver on console and listing when the factorisation gives anything but 0, a mere warning included.
void SolveSparseSystem(SparseTree& tree, RealArray R, std::int32_t JEDN, std::int32_t reserved,
                       TextUnit& console, TextUnit& listing, std::int32_t SolverReportFlag);

} // namespace zurt
