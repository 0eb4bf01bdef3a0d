// The working vector `A`: one block of 8-byte words that holds every array whose size depends on the problem.
//
// Sections are known by their first word (one-based) and are handed out as views; this module holds the only cast of
// words to 32-bit integers. LMAX is the first free word. A section may be taken beyond the end of `A`: the tests for
// overflow stand at fixed places of the input (run/partition.h), and no view is made before the next of them.
// Pages cost nothing until they are touched. Sanitizer builds poison the words from LMAX up, but only as many as a
// stray index is likely to reach: poisoning all would take longer than most runs.
#pragma once

#include "core/array_view.h"

#include <vector>

namespace zurt {

constexpr Word kWorkingVectorSize = 120000000;

/// One section as it was taken; overflow reports and debug logs name it.
struct SectionRecord {
    const char* name;
    Word first;
    Word length;
};

struct WorkingVector {
    double* words = nullptr;
    Word NTOTA = 0;
    Word LMAX = 1;
    Word LMAXM = 1;
    Word forbiddenEnd = 1; // sanitizer builds: the first word that has never been poisoned
    std::vector<SectionRecord> sections;
};

/// Makes `A` of `size` words, all zero; stops with a library error when the system refuses.
void CreateWorkingVector(WorkingVector& A, Word size);
void DestroyWorkingVector(WorkingVector& A);

/// A new problem: LMAX is 1, no section is taken, old contents stay.
void RestartWorkingVector(WorkingVector& A);

/// Takes n words at LMAX under `name` and returns their first index; n below 1 takes none.
Word TakeWords(WorkingVector& A, const char* name, Word n);

/// Gives back everything from `first` up.
void ReleaseFrom(WorkingVector& A, Word first);

/// The first section that does not lie within `A`, null when all do.
const SectionRecord* FirstSectionOutside(const WorkingVector& A);

/// The n words from `first` on; a section that does not lie within `A` is a fault and stops the run.
RealArray RealSection(const WorkingVector& A, Word first, Word n);
RealTable RealTableSection(const WorkingVector& A, Word first, Word rows, Word columns);

/// n 32-bit integers, densely packed in the first half of the n words from `first` on.
IntArray IntSection(const WorkingVector& A, Word first, Word n);
IntTable IntTableSection(const WorkingVector& A, Word first, Word rows, Word columns);

/// Sets words first..last to 0.0.
void ClearWords(const WorkingVector& A, Word first, Word last);

} // namespace zurt
