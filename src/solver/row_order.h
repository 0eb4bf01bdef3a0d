// The order in which the rows of a sparse symmetric matrix are eliminated: parts that don't couple, then what separates them.
//
// Equations are cut in the middle of their numbers: those below go upwards, those above downwards, and between the two, last,
// those that couple with both ("burning at both ends": I. Babuska, SIAM J. Numer. Anal. 9 (1972) 53-77; H. A. van der Vorst, Parallel
// Computing 5 (1987) 45-54). The order depends on the equations alone, never on the number of threads. Called by
// solver/system_rows, solver/incomplete_cholesky and solver/conjugate_gradients.
#pragma once

#include "solver/symmetric_rows.h"

namespace zurt {

/// Rows count from 0, as parts and stages do.
struct RowOrder {
    std::vector<std::int32_t> row;      // of equation i+1
    std::vector<std::int32_t> equation; // of row i, less 1
    std::vector<std::int32_t> part;     // the first row of each part, JEDN behind the last
    std::vector<std::int32_t>
        stage; // the first part of each stage, the number of parts behind the last; the parts of
               // a stage couple with none but their own rows and parts of other stages
};

/// The order of JEDN equations.
RowOrder MakeRowOrder(const ElementEquations& elements, std::int32_t JEDN);

/// The equations of the elements by the numbers of their rows, from 1.
void RenumberEquations(ElementEquations& elements, const RowOrder& order);

inline std::size_t PartCount(const RowOrder& order) {
    return order.part.size() - 1;
}
inline std::size_t StageCount(const RowOrder& order) {
    return order.stage.size() - 1;
}

} // namespace zurt
