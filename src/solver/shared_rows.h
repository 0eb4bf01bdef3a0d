// This process's part of a system that several processes form: the sum of the elements that it adds, as symmetric rows.
//
// The pattern is found from the elements themselves, as they come for the first time: nobody has to say which of them this
// process forms. From then on elements that come in the same order go to places that are known; one that comes out of turn
// makes the pattern anew. Called by solver/system_petsc.
#pragma once

#include "solver/symmetric_rows.h"

namespace zurt {

/// Elements one behind the other, by what came with them.
struct AddedElements {
    std::vector<std::int32_t> nodes;    // ND of each
    std::vector<std::int32_t> equation; // LM of each, ND entries
    std::vector<std::uint32_t> place;   // of the packed matrix of each in SymmetricRows::value
    std::vector<double> matrix;         // the packed matrices, of elements without places
};

struct SharedRows {
    SymmetricRows rows;
    AddedElements known; // in the order in which they are added
    AddedElements late;  // of the system in hand: what has come behind the first that was not known
    std::size_t elementInHand = 0, equationInHand = 0,
                placeInHand = 0; // where the next one of `known` stands
};

/// All values 0; the pattern stays.
void ClearSharedRows(SharedRows& shared);

/// Adds an element. Entries of LM that are 0 or below drop their row and column.
///   S   1..ND(ND+1)/2: packed upper triangle of its matrix, row by row (input)
///   LM  1..ND: equation numbers (input)
void AddToSharedRows(SharedRows& shared, ConstRealArray S, ConstIntArray LM, Word ND);

/// Brings in what has come late: true when that has made the pattern of JEDN equations anew.
bool FinishSharedRows(SharedRows& shared, std::int32_t JEDN);

/// The entries of the whole matrix that this process's elements touch, both triangles: equations from 0, in an order that
/// holds as long as the pattern does.
void ListEntries(const SharedRows& shared, std::vector<std::int32_t>& row, std::vector<std::int32_t>& column);

/// Their values, in the same order. `value` keeps its length.
void ListValues(const SharedRows& shared, std::vector<double>& value);

} // namespace zurt
