// What the ranks of zurt-mpi do beside core/ranks.h: they start and end, and share out the linear system. Compiled for
// zurt-mpi alone. Callers: main_mpi.cpp, solver/system_petsc.cpp.
#pragma once

#include "core/ranks.h"

#include <string>

namespace zurt {

/// Starts MPI. Whatever ranks but the first print from now on is lost, on standard output and standard error.
void StartRanks();

/// Ends MPI. Called by all ranks, when all that they wrote is stored.
void EndRanks();

/// Adds up the ranks' vectors 1..n and leaves of the sums those that ShareOf(n) gives to this rank in `own`, from 0.
void SumToShares(ConstRealArray values, double* own);

/// Ends the run for what a library reports from work that all ranks do jointly, with status 2. Others may never come back
/// from that work: when they have not within some seconds, all processes end at once, behind this message.
[[noreturn]] void StopInJointWork(const std::string& text);

} // namespace zurt
