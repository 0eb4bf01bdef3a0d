// Factorisation of the skyline store in place, K = L D L-transposed, column by column without pivoting.
//
// Every sum runs from the diagonal outward, one product after the other, whatever instructions the machine
// offers: the digits of the factors are the same everywhere. Callers: SkylineSolve; the benchmarks.
#pragma once

#include "core/array_view.h"
#include "core/lanes.h"
#include "core/workers.h"

namespace zurt {

/// Factorises the store. Returns 0, or the number of the first equation whose pivot is not above zero (a
/// pivot that is not a number passes); that pivot then stands on its diagonal and the rest of the store is
/// spent.
///   SkylineMatrix  1..MAXA(NN+1)-1, in: K; out: d(c) on the diagonals, l(r,c) above them
///   MAXA           1..NN+1, in: solver/skyline_layout.h
///   instructions   a set that the machine runs; all of them give the same bits
///   workers        factorise panels of 16 columns side by side, where that pays; the bits are the same
/// Takes scratch for 16 columns of the greatest height from the heap, once for each worker.
Word FactorSkyline(RealArray SkylineMatrix, ConstIntArray MAXA, Word NN, InstructionSet instructions,
                   Workers& workers);

/// The same with the widest set and one worker.
Word FactorSkyline(RealArray SkylineMatrix, ConstIntArray MAXA, Word NN);

} // namespace zurt
