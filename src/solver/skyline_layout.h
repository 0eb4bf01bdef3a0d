// Layout of the skyline store: column heights from the connectivity, column pointers MAXA from the heights.
//
// The store holds the upper triangle column after column, each from its diagonal upward: row r of column c
// stands at MAXA(c) + c - r. MAXA has JEDN + 1 entries, MAXA(JEDN + 1) - 1 is the size NWK of the store. One
// slot serves both arrays: it holds the heights MHT while the element groups are read and MAXA from the last
// group on. Callers: the element readers at the end of a group, and whoever renumbers the equations.
#pragma once

#include "core/array_view.h"

namespace zurt {

/// Raises the column heights so that the equations of one element couple: every equation of the element
/// reaches up to the lowest of them.
///   MHT  1..JEDN, in and out: heights above the diagonal
///   ID   1..NP, in: equation numbers of the nodes, 0 or below for a node without one
///   NEL  rows = elements, columns = element nodes, in: node numbers, 0 for an empty place
///   LM   1..NDIM, workspace: the equations found
///   NDIM the number of node columns that count
void RaiseColumnHeights(IntArray MHT, ConstIntArray ID, ConstIntTable NEL, Word element, IntArray LM,
                        Word NDIM, Word JEDN);

/// Turns heights into column pointers in place and returns NWK.
///   MAXA  1..JEDN+1, in: MHT(1..JEDN); out: MAXA(1) = 1, MAXA(2) = 2, MAXA(c+1) = MAXA(c) + MHT(c) + 1
/// The height of column 1 is passed over. A position beyond 32 bits is held at the largest integer: NWK,
/// which is exact, then shows that the store can't be had.
Word MakeColumnPointers(IntArray MAXA, Word JEDN);

/// RaiseColumnHeights for the elements 1..NE of a group. With `finish` set, after the last group, MHT becomes
/// MAXA and NWK is set; without it NWK is left alone.
void ComputeColumnHeights(IntArray MHT, ConstIntArray ID, ConstIntTable NEL, IntArray LM, Word NE, Word JEDN,
                          bool finish, Word NDIM, Word& NWK);

} // namespace zurt
