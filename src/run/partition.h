// The partition of `A` for one problem: which sections are taken, in which order, and where overflow is tested.
//
// The driver calls these as the deck is read. Each sets the pointers of Control; the sizes are words. The places of the
// overflow tests are part of the design: arrays without a test of their own show at the next one.
#pragma once

#include "run/run.h"

#include <string>

namespace zurt {

/// Which solver the sections are for: SparseMode, from SolverSelector or the command line.
void SetSolver(Run& run, std::int32_t SolverSelector);
/// The number of equations, and the length of SkylineMatrix.
void SetEquations(Run& run, std::int32_t JEDN);
void SetMatrixLength(Run& run, Word NWK);
/// The sizes of a larger system, for which the sections behind keep room; 0, 0: none.
void ReserveRoom(Run& run, std::int32_t JEDN, Word NWK);

/// LMAX above NTOTA while input is read: writes the message to the listing and stops.
void StopIfInputOverflows(Run& run);

/// Rows 1 and 2, and the place of the step list while the period cards are counted.
void TakePeriodTables(Run& run);
/// Row 3, once NDT is known.
void TakeStepList(Run& run);
/// Rows 4 to 10: coordinates, ID, node values, potential, direct step table, nodal vectors of the results pass.
void TakeNodeArrays(Run& run);
/// Row 11: `sharedNodes` words for the list of shared nodes, or NP under the last group's ISUB4.
void TakeSharedNodeList(Run& run, std::int32_t sharedNodes);
/// Notes, beside a message about dimensions, which section did not fit.
void NoteSectionOutside(const Run& run);
/// Row 12: MAXA, cleared.
void TakeDiagonalPositions(Run& run);
/// LMAX above NTOTA ahead of the forming of MAXA, which is formed unless SparseMode is on: message and stop.
void StopIfLayoutOverflows(Run& run);
/// A larger section for MAXA, with room for JEDN equations, behind what has been taken so far; its values go along.
void MoveDiagonalPositions(Run& run, std::int32_t JEDN);
/// Rows 14 and 15: diffusion curves.
void TakeDiffusionCurves(Run& run);
/// Rows 17 to 20: nodal vectors of nanochannel models, the copy of a curve column, a word per node for fibres.
/// (Row 16 is taken by the reader of the nanochannel table, behind the curves.)
void TakeNanochannelVectors(Run& run);
void TakeFitColumn(Run& run);
void TakeFibreNodes(Run& run);
/// Row 21: material tables.
void TakeMaterialTables(Run& run);
/// Row 22: pairs of the outlet and of the time multiplier.
void TakeOutletPairs(Run& run, std::int32_t pairs);
void TakeTimeMultiplierPairs(Run& run, std::int32_t pairs);
/// Row 24: reservoir node vector, behind a gap of NP words when `gap` is set. (Row 23 is taken by model/prescribed_values.)
void TakeReservoirVectors(Run& run, bool gap);
/// Row 30: shape factors.
void TakeShapeFactors(Run& run);
/// Row 31: the three solution vectors, cleared.
void TakeSolutionVectors(Run& run);
/// Rows 33 to 37; sets LMAXM.
void TakeSolverVectors(Run& run);

/// One function table (rows 25 to 29): points per function, then (argument, value) pairs.
void TakeFunctionTable(Run& run, const char* name, std::int32_t functions, std::int32_t points,
                       Word& countsAt, Word& tableAt);

/// The report of sizes on the listing.
void WriteSizeReport(Run& run);
/// What keeps MAXA, 32-bit integers, from holding the positions of SkylineMatrix; empty when nothing does. Only a working
/// vector larger than the usual one has room for such a matrix.
std::string FaultOfMatrixLength(const Run& run);
/// LMAXM above NTOTA: messages to listing and, under NDS, to MESSAGES.LST, then stop. A matrix that MAXA can't hold is a
/// library error.
void StopIfSystemOverflows(Run& run);

} // namespace zurt
