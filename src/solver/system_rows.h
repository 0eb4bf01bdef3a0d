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

/// Makes ready for elements by their numbers.
void NumberInRows(SystemTarget& system, Word NET, Word NDMAX);
/// Finds the places of element n, if they are not known yet. Elements of other numbers may be in the hands of other workers.
void FindInRows(const SystemTarget& system, Word n, ConstIntArray LM, Word ND);
/// Adds the matrix of element n.
void AddNumberedToRows(const SystemTarget& system, Word n, ConstRealArray S, ConstIntArray LM, Word ND);
/// The word for the k-th entry of the packed matrix of element n, whose places are known; no dropped entry.
double* EntryInRows(const SystemTarget& system, Word n, Word k);

} // namespace zurt
