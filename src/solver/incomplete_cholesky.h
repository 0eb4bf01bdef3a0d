// The incomplete Cholesky factor without fill, as a preconditioner: L has the pattern of the lower triangle.
//
// J. A. Meijerink and H. A. van der Vorst, Math. Comp. 31 (1977) 148-162; the shift when a pivot fails: T. A. Manteuffel,
// Math. Comp. 34 (1980) 473-497. Called by solver/conjugate_gradients.
#pragma once

#include "solver/symmetric_rows.h"

namespace zurt {

/// Factors A + shift I = L L^T. False, and L of no use, when a pivot is not positive.
///   A  its diagonal is 1
///   L  as the values of A (in, out); the diagonal holds reciprocals
bool FactorRows(const SymmetricRows& A, double shift, std::vector<float>& L);

/// z = (L L^T)^-1 r, each with a word for each row.
void SubstituteRows(const SymmetricRows& A, const std::vector<float>& L, const std::vector<double>& r,
                    std::vector<double>& z);

} // namespace zurt
