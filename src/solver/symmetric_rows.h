// A sparse symmetric matrix: its lower triangle row by row, each row's columns rising, the diagonal last.
//
// The pattern is made once a layout from the equations of all elements; the values are set to zero and summed for every
// system. For sums, rows are cut into blocks, by their number alone: what is summed block by block has the same digits however
// many threads share the blocks. Called by solver/system_rows, solver/conjugate_gradients and solver/incomplete_cholesky.
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
    std::vector<std::int32_t> block;  // the first row of each block, from 0; JEDN behind the last
    std::vector<std::int32_t> lowest; // column among the rows of each block
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

/// Where the entry of equations i and j (1..JEDN, in either order) stands in `column` and `value`, from 0; -1 if they don't
/// couple.
Word PlaceOfEntry(const SymmetricRows& rows, std::int32_t i, std::int32_t j);

/// How many blocks the rows are cut into.
inline std::int32_t BlockCount(const SymmetricRows& rows) {
    return static_cast<std::int32_t>(rows.block.size()) - 1;
}

/// The share of block b (from 0) in product = A v: rows of the block get their sums over the block's own columns and those
/// ahead of it. What the block gives to rows ahead of it comes to `ahead`, which has a word for each row from lowest[b] on.
///   v, product  entries 1..JEDN at 0..JEDN-1
void MultiplyBlock(const SymmetricRows& rows, std::size_t b, const double* v, double* product,
                   std::vector<double>& ahead);

/// Adds what the blocks behind block b have given to its rows, in the order of the blocks.
void AddFromBlocksBehind(const SymmetricRows& rows, std::size_t b,
                         const std::vector<std::vector<double>>& ahead, double* product);

} // namespace zurt
