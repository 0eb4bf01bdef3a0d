// The sparse direct solver as a row of solver/linear_system.cpp: the matrix is the assembler's tree, which the run keeps.
#pragma once

#include "solver/solver_row.h"

namespace zurt {

extern const LinearSolver kSparseSolver;

/// The most active nodes of an element that the assembler's dense scratch holds; group readers refuse more.
constexpr Word kMaxSparseNodes = 8;

} // namespace zurt
