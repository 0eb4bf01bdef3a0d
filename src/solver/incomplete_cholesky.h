// The incomplete Cholesky factor without fill, as a preconditioner: L has the pattern of the lower triangle.
//
// J. A. Meijerink and H. A. van der Vorst, Math. Comp. 31 (1977) 148-162; the shift when a pivot fails: T. A. Manteuffel,
// Math. Comp. 34 (1980) 473-497. Every function here is called by all workers of a team at once, and shares out the rows
// of each level among them; every sum has its order, whoever makes it. Called by solver/conjugate_gradients.
#pragma once

#include "core/workers.h"
#include "solver/level_schedule.h"

namespace zurt {

/// L, as the entries of A; the diagonal holds reciprocals. Single precision halves what the substitution moves, and steers
/// the iteration as well.
struct IncompleteFactor {
    std::vector<float> L;
    // With a schedule: L off the diagonal in its orders, and the diagonal.
    std::vector<float> forward, backward, diagonal;
    std::vector<double> z; // a vector in that order
    std::vector<std::vector<double>>
        expanded;             // a row in hand, by columns, all zero between rows; one a worker
    std::vector<char> failed; // one a worker
};

/// Room for the factor of A.
void TakeFactorRoom(const SymmetricRows& A, const LevelSchedule& schedule, int workers,
                    IncompleteFactor& factor);

/// One of the workers of a team.
struct TeamMember {
    Workers& workers;
    int worker;
};

/// Factors A + shift I = L L^T, where A has a diagonal of 1. False, and L of no use, when a pivot is not positive.
bool FactorRows(const TeamMember& member, const SymmetricRows& A, const LevelSchedule& schedule, double shift,
                IncompleteFactor& factor);

/// z = (L L^T)^-1 r, each with a word for each row.
void SubstituteRows(const TeamMember& member, const SymmetricRows& A, const LevelSchedule& schedule,
                    IncompleteFactor& factor, const double* r, double* z);

} // namespace zurt
