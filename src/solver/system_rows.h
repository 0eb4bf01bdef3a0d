// The linear system in symmetric compressed rows, solved by conjugate gradients: behind solver/linear_system.h, where each
// operation is told. Nothing lies in `A`.
#pragma once

#include "solver/linear_system.h"

namespace zurt {

void BeginRows(Run& run);
void CoupleRows(Run& run, const Numbering& numbering, ConstIntTable NEL, Word NDIM, ConstIntArray marks);
void FinishRows(Run& run, const Numbering& numbering);
void SetRowsAside(Run& run);
void PutRowsBack(Run& run);
void ReportRows(Run& run);

void ClearRows(Run& run);
void OpenRows(Run& run, SystemTarget& system);
void AddToRows(const SystemTarget& system, ConstRealArray S, ConstRealArray FE, ConstIntArray LM, Word ND);
void SolveRows(Run& run);

} // namespace zurt
