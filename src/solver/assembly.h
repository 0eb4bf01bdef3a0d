// One element into the system, whichever store it has: the skyline, or the sparse assembler's tree.
//
// Called by the element passes of all families.
#pragma once

#include "run/run.h"
#include "solver/skyline_assembly.h"

namespace zurt {

/// The most active nodes of an element that the sparse assembler's dense scratch holds; group readers refuse more.
constexpr std::int32_t kMaxSparseNodes = 8;

/// Where a visit of a group adds its elements.
struct SystemTarget {
    bool sparse = false;
    RealArray SkylineMatrix; // 1..NWK, empty in sparse mode
    ConstIntArray MAXA;      // 1..JEDN+1
    RealArray R;             // 1..JEDN
    std::int32_t matrixFlag = 0;
};

SystemTarget SystemTargetOf(const Run& run);

/// Adds an element. Entries of LM that are 0 or below drop their row and column.
///   S       1..ND(ND+1)/2: packed upper triangle of its matrix, row by row (input)
///   FE, LM  1..ND: right-hand side, equation numbers (input)
/// In skyline mode the matrix is left alone when matrixFlag is 0. In sparse mode ND is at most kMaxSparseNodes and both
/// triangles go to the tree, which SparseInit has begun.
void AddElement(const SystemTarget& system, ConstRealArray S, ConstRealArray FE, ConstIntArray LM, Word ND);

/// Finds where in the skyline an element of at most SkylinePlaces::kMostNodes nodes goes and calls the words into the caches,
/// ahead of the forming of its matrix. Nothing is found in sparse mode and when matrixFlag is 0.
void LocateElement(const SystemTarget& system, ConstIntArray LM, Word ND, SkylinePlaces& places);

/// AddElement for an element that was located.
void AddLocatedElement(const SystemTarget& system, SkylinePlaces& places, ConstRealArray S, ConstRealArray FE,
                       ConstIntArray LM, Word ND);

} // namespace zurt
