// Solution of K x = v with the skyline store of solver/skyline_layout.h.
//
// Callers: the equilibrium iteration for the global system, the radial fibre element for its private one.
// Both call with mode 0 or 1 after assembly and then with mode 2 for each right-hand side.
#pragma once

#include "core/array_view.h"
#include "core/text_unit.h"
#include "core/workers.h"

namespace zurt {

constexpr std::int32_t kFactorNodesMode = 0; // equations of nodes, so the one that fails goes with the stop
constexpr std::int32_t kFactorMode = 1;
constexpr std::int32_t kSubstituteMode = 2;

/// A mode below 2 factorises the store and leaves V alone; any other mode reduces V and substitutes back and
/// leaves the store alone.
///   SkylineMatrix  1..NWK, in and out
///   V              1..NN, in: right-hand side, out: solution
///   MAXA           1..NN+1, in
///   NWK            handed in by every caller, not consulted
///   workers        share the factorisation
/// Stops the run when a pivot is not above zero, with three lines on the listing that stand in Serbian under
/// either language.
void SkylineSolve(RealArray SkylineMatrix, RealArray V, ConstIntArray MAXA, std::int32_t NN, std::int32_t NWK,
                  std::int32_t mode, TextUnit& listing, Workers& workers);

/// The second half of SkylineSolve: V := K^-1 V, with the factors in the store.
void SubstituteSkyline(ConstRealArray SkylineMatrix, RealArray V, ConstIntArray MAXA, Word NN);

} // namespace zurt
