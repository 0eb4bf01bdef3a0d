// The incomplete Cholesky factor without fill, as a preconditioner: L has the pattern of the lower triangle.
//
// J. A. Meijerink and H. A. van der Vorst, Math. Comp. 31 (1977) 148-162. What fill would have given to a uniform solution is taken off the
// diagonal in its place, nearly all of it, so that smooth parts of the solution are found at once: I. Gustafsson, BIT 18 (1978)
// 142-156; O. Axelsson and G. Lindskog, Numer. Math. 48 (1986) 479-498. The shift when a pivot fails: T. A. Manteuffel,
// Math. Comp. 34 (1980) 473-497. Parts of a stage of the rows' order (solver/row_order.h) are factored and substituted side by
// side; each has one worker, so every sum has its order. Called by solver/conjugate_gradients.
#pragma once

#include "core/workers.h"
#include "solver/row_order.h"

namespace zurt {

/// L, as the entries of A; the diagonal holds reciprocals. Single precision halves what the substitution moves, and steers
/// the iteration as well.
struct IncompleteFactor {
    std::vector<float> L;
    std::vector<std::vector<double>>
        expanded; // a row in hand, by columns, all zero between rows; one a worker
    // Row i of (fill left out) weight, while it is summed: of rows by their own part, and what each part gives to those behind its stage.
    std::vector<double> fill;
    std::vector<std::vector<double>> outside;
    std::vector<char> failed; // one a part
};

/// What is factored in the place of A.
struct FactorTerms {
    const double* weight; // of each row, from 0: a uniform solution, in terms of the scaled system
    double share;         // of the fill left out that the diagonal takes, 0 to 1
    double shift;         // of the diagonal
};

/// One of the workers of a team.
struct TeamMember {
    Workers& workers;
    int worker;
};

/// Calls body(part, first, end) for the rows first..end-1 of this worker's parts of a stage, and waits for the others.
template <class Body>
void ForPartsOfStage(const TeamMember& member, const RowOrder& order, std::size_t stage, const Body& body) {
    const Word first = order.stage[stage], count = order.stage[stage + 1] - first;
    const Word workers = member.workers.count, worker = member.worker;
    for (Word p = first + count * worker / workers; p < first + count * (worker + 1) / workers; ++p) {
        const auto part = static_cast<std::size_t>(p);
        body(part, static_cast<std::size_t>(order.part[part]),
             static_cast<std::size_t>(order.part[part + 1]));
    }
    MeetWorkers(member.workers);
}

/// The same for all stages, from the first on.
template <class Body> void ForStages(const TeamMember& member, const RowOrder& order, const Body& body) {
    for (std::size_t stage = 0; stage < StageCount(order); ++stage)
        ForPartsOfStage(member, order, stage, body);
}

/// Room for the factor of A, and for so many workers.
void TakeFactorRoom(const SymmetricRows& A, const RowOrder& order, int workers, IncompleteFactor& factor);

/// Factors A + shift I = L L^T, where A has a diagonal of 1 and the columns of its pattern are found. False, and L of no use, when a pivot
/// is not positive. Called by all workers of a team, as FactorNothing is.
bool FactorRows(const TeamMember& member, const SymmetricRows& A, const RowOrder& order,
                const FactorTerms& terms, IncompleteFactor& factor);

/// L = I.
void FactorNothing(const TeamMember& member, const SymmetricRows& A, const RowOrder& order,
                   IncompleteFactor& factor);

/// Entry i of L^-1 applied to a vector of which `right` is entry i; y holds the entries before it.
inline double SubstituteForward(const SymmetricRows& A, const float* L, std::size_t i, double right,
                                const double* y) {
    const std::int32_t* const column = A.column.data();
    const Word diagonal = A.start[i + 1] - 1;
    for (Word k = A.start[i]; k < diagonal; ++k)
        right -= L[k] * y[column[k]];
    return right * L[diagonal];
}

/// Entry i of L^-T applied to a vector, with z its entry less what rows behind took off it; takes off the entries before it.
inline double SubstituteBackward(const SymmetricRows& A, const float* L, std::size_t i, double* z) {
    const std::int32_t* const column = A.column.data();
    const Word diagonal = A.start[i + 1] - 1;
    const double known = z[i] * L[diagonal];
    for (Word k = A.start[i]; k < diagonal; ++k)
        z[column[k]] -= L[k] * known;
    return known;
}

} // namespace zurt
