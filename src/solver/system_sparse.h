// The sparse direct solver behind solver/linear_system.h, where each operation is told: the matrix is the assembler's tree,
// which the run keeps. The pattern follows from the elements as they are added, so there is no layout.
#pragma once

#include "solver/linear_system.h"

namespace zurt {

/// The most active nodes of an element that the assembler's dense scratch holds; group readers refuse more.
constexpr Word kMaxSparseNodes = 8;

void BeginTree(Run& run);
void OpenTree(Run& run, SystemTarget& system);
void AddToTree(const SystemTarget& system, ConstRealArray S, ConstRealArray FE, ConstIntArray LM, Word ND);
void SolveTree(Run& run);

} // namespace zurt
