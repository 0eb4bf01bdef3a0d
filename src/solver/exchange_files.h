// Exchange of systems with the outside: matrix dumps, comparison of a solution, and the route to an external solver.
//
// No step of a run calls any of this: it is a service to be called by hand when a system is to be examined. All
// binary files are plain byte streams in the machine's own order, without record marks. An entry is 16 bytes: row and
// column as 32-bit integers, one-based, and the value as a double.
//
//   Sparse.bin            entries
//   FULLMATR.BIN          number of equations and of entries as 32-bit integers, entries
//   /tmp/ZURF_MUMPS.OUT   the same; the diagonal and what stands above it of a symmetric matrix
//   /tmp/ZURF_RHS.OUT     the right-hand side that goes with it: doubles
//   RESENJE.OUT, /tmp/RESENJE_n.OUT   the solution: doubles
//   comparison.txt        a line for each equation: number and residual
//   params.txt            three lines with one text each; the third is the n of /tmp/RESENJE_n.OUT, the first two are
//                         the user's own (a title, a remark)
//
// A file that can't be opened, read or written ends the run with a library error. File names are parameters so that
// two systems can be kept apart; the defaults are the names above.
#pragma once

#include "core/array_view.h"

#include <cstdio>
#include <string>

namespace zurt {

/// Doubles that a stream collects before it writes them.
constexpr Word kExchangeBufferWords = 67108864;

/// A stream of doubles on its way to a file.
struct ExchangeStream {
    std::FILE* file = nullptr;
    std::string name;
    double* buffer = nullptr;
    Word capacity = 0;
    Word filled = 0;
};

/// Opens the file for writing from its start. The buffer's pages cost nothing until they are used.
void OpenExchangeStream(ExchangeStream& stream, const std::string& name,
                        Word capacity = kExchangeBufferWords);
/// Writes what the buffer still holds and closes the file.
void CloseExchangeStream(ExchangeStream& stream);

/// Adds the terms of an element whose two degrees of freedom have equations, zeros among them too, in the order in
/// which the sparse assembler takes them; only with SparseMode other than 0. A term is two doubles wide: an entry as
/// above, so that a file of such a stream is a Sparse.bin, with several entries for one place.
///   n, LM, S  as SparseAddElement takes them
void WriteElementStream(ExchangeStream& stream, std::int32_t SparseMode, Word n, ConstIntArray LM,
                        ConstRealTable S);

/// Adds vector(1..length); only with SparseMode other than 0.
void WriteVectorStream(ExchangeStream& stream, std::int32_t SparseMode, ConstRealArray vector, Word length);

/// Reads `count` entries of Sparse.bin into the arrays of the solver's instance, each at least as long.
void ReadSparseFile(std::int32_t count, IntArray IRN, IntArray JCN, RealArray A,
                    const std::string& name = "Sparse.bin");

/// Writes a whole system, both triangles, as coordinate arrays of NZ entries hold it.
void WriteFullMatrix(std::int32_t N, std::int32_t NZ, ConstIntArray IRN, ConstIntArray JCN, ConstRealArray A,
                     const std::string& name = "FULLMATR.BIN");

/// Residual of a solution of the system in FULLMATR.BIN, which must have N equations.
///   X  1..N, in: the solution
///   R  1..N, in: right-hand side, out: K X - R, entry after entry in the order of the file
void CompareSolution(ConstRealArray X, std::int32_t N, RealArray R,
                     const std::string& matrixName = "FULLMATR.BIN",
                     const std::string& comparisonName = "comparison.txt");

/// Writes the system for the external solver to ZURF_MUMPS.OUT and ZURF_RHS.OUT in `folder`: of the matrix, column
/// after column, the diagonal and then upwards every entry above 1e-20 in size.
///   SkylineMatrix, MAXA  solver/skyline_layout.h, not yet factorised
///   R                    1..N, in: right-hand side
void WriteSkylineForExternal(ConstRealArray SkylineMatrix, ConstRealArray R, ConstIntArray MAXA,
                             std::int32_t N, const std::string& folder = "/tmp");

/// Where the route to the external solver passes.
struct ExternalRoute {
    std::string parameters = "params.txt";
    std::string command = "mpiexec -np 32 solver"; // for the system's shell
    std::string result = "RESENJE.OUT";
    std::string numberedFolder = "/tmp"; // of RESENJE_n.OUT
};

/// Reads the three texts, runs the command, waits, and reads R(1..N) from the result file. The system must have been
/// written before. A command that ends with a status other than 0 gets a note on standard error, no more.
void SolveExternal(RealArray R, std::int32_t N, const ExternalRoute& route = {});

/// The same with the numbered result file.
void SolveExternalNumbered(RealArray R, std::int32_t N, const ExternalRoute& route = {});

} // namespace zurt
