// The linear system of a run, whichever solver stands behind it: layout, clear, add an element, solve.
//
// The one door to the solvers for all that stand above them. The order of calls: BeginLayout, LayOutElements for each group,
// FinishLayout, whenever equations are numbered; then for each system ClearSystem, AddElement for each element of a visit of
// each group (SystemTargetOf), SolveSystem. The partition takes room in `A` between the two, as FinishLayout has answered.
// Callers: the readers of element groups, the fibre step, the element passes of all families, the equilibrium iteration,
// the homogenization.
#pragma once

#include "run/run.h"
#include "solver/skyline_assembly.h"

#include <vector>

namespace zurt {

/// The solvers. What differs between them stands in a pair of files each (system_skyline, system_sparse, system_rows); linear_system.cpp
/// leads from here to there.
enum class SolverKind { Skyline, Sparse, Rows };

// --- layout -------------------------------------------------------------------------------------------------------

/// The equations that a layout is for.
struct Numbering {
    ConstIntArray ID;      // 1..NP: equation number of each node, 0 or below for a node without one
    std::int32_t JEDN = 0; // how many there are
};

/// The numbering in force.
Numbering NumberingOf(const Run& run);

/// Begins a layout anew: no two equations couple. The section of MAXA must have room for its JEDN.
void BeginLayout(Run& run, const Numbering& numbering);

/// Couples the equations of each element.
///   NEL    rows = elements, columns = element nodes: node numbers, 0 for an empty place
///   NDIM   the number of node columns that count, at most kMostLayoutNodes
///   marks  one an element, 0 for an element that stays out; empty: all take part
void LayOutElements(Run& run, const Numbering& numbering, ConstIntTable NEL, Word NDIM, ConstIntArray marks);

/// Ends a layout and returns the words of `A` that its matrix takes (NWK); the caller hands them to the partition.
Word FinishLayout(Run& run, const Numbering& numbering);

/// Keeps the layout in force while another one, of up to JEDN equations, is formed for its size alone. While input is read:
/// it may take room in `A`.
void SetLayoutAside(Run& run, std::int32_t JEDN);
/// Puts it back.
void PutLayoutBack(Run& run);

/// What the report of sizes says beyond the partition of `A`.
void ReportSystem(Run& run);

/// Node columns of the widest table of elements: a radial fibre's.
constexpr Word kMostLayoutNodes = 2 * kMaxSubElements + 1;

/// What the solver asks of elements.
struct ElementLimit {
    Word nodes;         // at most so many; 0: any number
    const char* solver; // its name in a message, behind "with"
};
ElementLimit ElementLimitOf(const Run& run);

// --- one system ---------------------------------------------------------------------------------------------------

/// Sets matrix and right-hand side to zero.
void ClearSystem(Run& run);
/// The matrix alone.
void ClearMatrix(Run& run);

/// Where a visit of a group adds its elements.
struct SystemTarget {
    SolverKind kind = SolverKind::Skyline;
    RealArray matrix;         // the solver's words in `A`
    ConstIntArray MAXA;       // 1..JEDN+1, for a matrix in skyline form
    void* storage = nullptr;  // the solver's own record
    void* numbered = nullptr; // its record of the group's elements by their numbers
    RealArray R;              // 1..JEDN
    std::int32_t matrixFlag = 0;
};

SystemTarget SystemTargetOf(Run& run);

/// Adds an element. Entries of LM that are 0 or below drop their row and column. When matrixFlag is 0, a skyline is left alone.
///   S       1..ND(ND+1)/2: packed upper triangle of its matrix, row by row (input)
///   FE, LM  1..ND: right-hand side, equation numbers (input)
void AddElement(const SystemTarget& system, ConstRealArray S, ConstRealArray FE, ConstIntArray LM, Word ND);

/// Finds the words that the matrix of an element of at most ElementPlaces::kMostNodes nodes goes to and calls them into the
/// caches, ahead of the forming of its matrix. Nothing is found by solvers without such words and when matrixFlag is 0.
void LocateElement(const SystemTarget& system, ConstIntArray LM, Word ND, ElementPlaces& places);

/// AddElement for an element that was located.
void AddLocatedElement(const SystemTarget& system, ElementPlaces& places, ConstRealArray S, ConstRealArray FE,
                       ConstIntArray LM, Word ND);

/// What is said of the elements of a group ahead of a visit in which each is added once by AddLocatedElement or AddElementBeside, with
/// its number in 1..NET in its places: a solver then keeps what it has found out of an element. At most NDMAX nodes.
void NumberElements(SystemTarget& system, Word NET, Word NDMAX);

/// Whether elements may be added by several workers at once, with AddElementBeside.
bool AddsSideBySide(const SystemTarget& system);

/// A sum that is left aside.
struct DeferredTerm {
    double* entry;
    double value;
};

/// AddLocatedElement while others add elements too. Terms between equations marked in `shared` (1..ND at 0..ND-1), to which others
/// may add, go to `deferred` in the order of AddElement. Throws only with nothing added.
void AddElementBeside(const SystemTarget& system, ElementPlaces& places, ConstRealArray S, ConstRealArray FE,
                      ConstIntArray LM, Word ND, const bool* shared, std::vector<DeferredTerm>& deferred);

/// Solves the system: the right-hand side becomes the solution. A system that can't be solved stops the run with a message.
void SolveSystem(Run& run);

} // namespace zurt
