// Adding element matrices and vectors to the system, and the product of the system matrix with a vector.
//
// The store is the one of solver/skyline_layout.h. An element matrix is a packed upper triangle by rows,
// S(1,1), S(1,2) .. S(1,ND), S(2,2) .. S(ND,ND). LM holds the equation number of each element degree of
// freedom, 0 for none. Callers: the matrix passes of all element families; in sparse mode they use
// AddElementVector alone.
#pragma once

#include "core/array_view.h"

namespace zurt {

/// R(LM(i)) += F(i) for i = 1..ND wherever LM(i) is above 0.
void AddElementVector(RealArray R, ConstRealArray F, ConstIntArray LM, Word ND);

/// Adds an element to the system. The heights of the same connectivity guarantee that every position lies
/// within its column; no test is made.
///   SkylineMatrix  1..NWK, in and out; left alone when matrixFlag is 0
///   MAXA           1..JEDN+1, in
///   R              1..JEDN, in and out: takes F whatever matrixFlag is
///   S, F, LM       1..ND(ND+1)/2, 1..ND, 1..ND, in
void SkylineAddElement(RealArray SkylineMatrix, ConstIntArray MAXA, RealArray R, ConstRealArray S,
                       ConstRealArray F, ConstIntArray LM, Word ND, std::int32_t matrixFlag);

/// The words of a store that the packed matrix of an element of at most 8 nodes goes to, in its order; `dropped` stands for
/// those that have none. And what the element is known by.
struct ElementPlaces {
    static constexpr Word kMostNodes = 8;
    Word number; // of the element, where its group's are numbered (solver/linear_system.h)
    double* entry[kMostNodes * (kMostNodes + 1) / 2];
    Word count;
    double dropped;
};

/// Finds the words of an element of ND nodes and calls them into the caches: they lie in as many columns as it has nodes, and
/// in a large store none of them is there, so that the misses run beside the forming of the element's matrix.
void LocateSkylineElement(RealArray SkylineMatrix, ConstIntArray MAXA, ConstIntArray LM, Word ND,
                          ElementPlaces& places);

/// The word of a store that the entry of equations I and J (1..JEDN) has.
double* SkylineEntry(RealArray SkylineMatrix, ConstIntArray MAXA, Word I, Word J);

/// Adds a packed matrix at the words found before.
void AddAtPlaces(ElementPlaces& places, ConstRealArray S);

/// Y := Y + factor K X for the symmetric matrix K in the store (not its factors). X and Y: 1..JEDN, apart.
void SkylineMultiply(ConstRealArray SkylineMatrix, ConstRealArray X, RealArray Y, ConstIntArray MAXA,
                     Word JEDN, double factor);

} // namespace zurt
