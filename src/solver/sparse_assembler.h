// Sparse assembler: sums the entries of the system matrix and delivers them as coordinate arrays in ascending (row,
// column), the form that the sparse solver takes.
//
// The entries are in a tree that the caller owns. Rows and columns are one-based equation numbers and are not symmetrised:
// (r, c) and (c, r) are two entries. The order of calls for one solve: SparseInit, SparseZeroValues, any number of
// SparseAddElement, SparseNonzeroCount, SparseExtract, SparseKill. Verbosity 1 prints a line on standard output; the
// run never asks for it.
// Callers: solver/system_sparse, the sparse solver driver.
#pragma once

#include "core/array_view.h"

namespace zurt {

struct SparseTree;

/// Makes the tree empty and keeps the flag. Nodes that are still there are not freed before SparseKill.
void SparseInit(SparseTree& tree, std::int32_t symmetryFlag, std::int32_t verbosity);

/// Sets every stored value to 0.0 and keeps the pattern.
void SparseZeroValues(SparseTree& tree);

/// Adds an element matrix.
///   n   degrees of freedom of the element
///   LM  1..n, in: equation numbers; 0 drops a row and its column, and only 0 does
///   S   n x n, in: S(j, i) goes to row LM(j), column LM(i). With a symmetry flag other than 0 only j >= i is taken.
void SparseAddElement(SparseTree& tree, Word n, ConstIntArray LM, ConstRealTable S);

/// Adds a value to one entry. A value of exactly 0.0 leaves no trace, and an entry whose sum becomes exactly 0.0 is
/// taken out of the pattern.
void SparseAddEntry(SparseTree& tree, std::int32_t row, std::int32_t column, double value);

/// The number of entries.
void SparseNonzeroCount(const SparseTree& tree, std::int32_t& count);

/// Fills the arrays with the entries, ascending in (row, column).
///   count           out: the number of entries
///   IRN, JCN, A     1..count, out; at least as long as SparseNonzeroCount says
void SparseExtract(SparseTree& tree, std::int32_t& count, IntArray IRN, IntArray JCN, RealArray A,
                   std::int32_t verbosity);

/// Frees all entries. Nothing but SparseInit may follow.
void SparseKill(SparseTree& tree, std::int32_t verbosity);

/// Writes every entry to a file of 16-byte records: row and column as 32-bit integers, the value as a double, without
/// header or trailer. A file that can't be opened is reported on standard output, and nothing is written.
void WriteSparseDump(SparseTree& tree, const char* name = "osparse.bin");

} // namespace zurt
