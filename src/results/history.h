// The table of balances, a row a step: stored amounts, flows by where they pass, what is left over, values at chosen nodes.
//
// The option --history asks for it. The file is comma separated values under one row of names; docs/manual.md says what each
// column is. Flows are the conservative ones, residuals of the discrete equations at the nodes without an
// equation (Hughes et al., J. Comput. Phys. 163 (2000) 467-488), so they close to what the iteration leaves.
// Amounts are those of elements/forming/form_elements.h, times and concentrations in the deck's units.
#pragma once

#include "run/run.h"

namespace zurt {

/// Ends the run when the table is asked for with a node that the problem does not have. Called ahead of its first pass.
void CheckProbes(const Run& run);

/// A pass begins: when it writes results and the table is asked for, opens the problem's file and writes the names of its
/// columns. Ends the run when the file can't be opened.
void BeginHistory(Run& run);

/// The row of the step that has been solved, flushed. Nothing in passes without rows.
void WriteHistoryRow(Run& run);

} // namespace zurt
