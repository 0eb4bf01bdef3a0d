// A sparse symmetric matrix: its lower triangle row by row, each row's columns rising, the diagonal last.
//
// The pattern is made once a layout from the equations of all elements; the values are set to zero and summed for every
// system. Called by solver/system_rows, solver/conjugate_gradients, solver/incomplete_cholesky and solver/shared_rows.
#pragma once

#include "core/array_view.h"

#include <cstdint>
#include <vector>

namespace zurt {

struct SymmetricRows {
    std::int32_t JEDN = 0;            // equations; that of row i, from 0, is i + 1
    std::vector<Word> start;          // of each row, from 0; the end of the last one behind it
    std::vector<std::int32_t> column; // rows, from 0
    std::vector<double> value;        // as `column`; one word behind them takes entries that are dropped
    // The columns below the diagonal, each one's rows rising; empty until IndexColumns.
    std::vector<Word> below;       // where each column begins, from 0; the end of the last one behind it
    std::vector<std::int32_t> row; // rows, from 0
    std::vector<std::int32_t> at;  // as `row`: where the entry stands behind the start of its row
};

/// What couples: the equations of each element, as they come.
struct ElementEquations {
    std::vector<std::int32_t> equation; // of all elements, one behind the other
    std::vector<Word> start;            // of element e at e-1; the end of the last one behind it
};

/// Adds an element; numbers of 0 and below are left out.
void AddElementEquations(ElementEquations& elements, ConstIntArray LM, Word ND);

/// The pattern of JEDN equations, the values 0. Every row has its diagonal.
void MakePattern(SymmetricRows& rows, const ElementEquations& elements, std::int32_t JEDN);

/// Finds the columns of the pattern.
void IndexColumns(SymmetricRows& rows);

/// Where the entry of equations i and j (1..JEDN, in either order) stands in `column` and `value`, from 0; -1 if they don't
/// couple.
Word PlaceOfEntry(const SymmetricRows& rows, std::int32_t i, std::int32_t j);

/// Row i of the lower triangle, as a row and as a column, in product = A v: entry i begins, and entries before it grow. Returns
/// what the row has given to entry i off the diagonal.
///   v, product  entries 1..JEDN at 0..JEDN-1
inline double MultiplyRow(const SymmetricRows& rows, std::size_t i, const double* v, double* product) {
    const double* const value = rows.value.data();
    const std::int32_t* const column = rows.column.data();
    const Word diagonal = rows.start[i + 1] - 1;
    const double own = v[i];
    double lower = 0.0;
    for (Word k = rows.start[i]; k < diagonal; ++k) {
        lower += value[k] * v[column[k]];
        product[column[k]] += value[k] * own;
    }
    product[i] = value[diagonal] * own + lower;
    return lower;
}

} // namespace zurt
