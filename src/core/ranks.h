// The processes that share one run, and what they do together.
//
// The program zurt is one process, and everything here does nothing or answers for one (ranks.cpp). The program zurt-mpi
// is started several times by mpiexec, and the same calls join the processes, its ranks (ranks_mpi.cpp). All ranks read the
// same deck and keep the same vectors; each forms its share of the elements, and the sums come back to all of them, so that
// every decision falls on the same numbers. The first rank alone writes files.
//
// What joins the ranks must be called by all of them in the same order. It first asks whether all are well: when one has
// stopped, it throws in the others too, so that all come to the driver, and the message of the one
// is told once (AgreeOnStop). Callers: text units and files, the deck, the loops over elements, the driver.
#pragma once

#include "core/array_view.h"
#include "core/stop.h"

#include <cstdint>

namespace zurt {

/// True in zurt, and in the one rank of zurt-mpi that writes.
bool IsFirstRank();

/// Consecutive numbers from `first` to `last`, none when last is first - 1.
struct Share {
    Word first = 1;
    Word last = 0;
};

/// Which of the numbers 1..n this rank works on: the shares of all ranks are 1..n, as even as can be, in the order of ranks.
Share ShareOf(Word n);

/// Throws in this rank when another has stopped.
void StopWithOtherRanks();

/// Every entry becomes its sum over the ranks.
void SumOverRanks(RealArray values);
void SumOverRanks(IntArray values);

/// Every rank gets the columns that others have formed: of those that ShareOf(columns) gives to them.
void GatherShares(RealTable values);

/// Every rank gets `count` bytes of the first.
void TakeFromFirstRank(void* bytes, Word count);

/// The stop that ends the run on all ranks: this one, or that of the lowest rank that has one. Called by each rank once, by
/// the driver.
RunStop AgreeOnStop(const RunStop& stop);

} // namespace zurt
