#include "run/working_vector.h"

#include "core/stop.h"

#include <algorithm>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

#ifdef ZURT_SANITIZE
#include <sanitizer/asan_interface.h>
#endif

namespace zurt {

namespace {

// Sizes from a deck are products of two 32-bit counts; beyond this a sum of them could overflow.
constexpr Word kLargestLMAX = Word{1} << 60;

void AllowWords([[maybe_unused]] const WorkingVector& A, [[maybe_unused]] Word first,
                [[maybe_unused]] Word end) {
#ifdef ZURT_SANITIZE
    const Word last = std::min(end, A.NTOTA + 1);
    if (last > first)
        ASAN_UNPOISON_MEMORY_REGION(A.words + (first - 1), static_cast<std::size_t>(last - first) * 8);
#endif
}

void ForbidWords([[maybe_unused]] const WorkingVector& A, [[maybe_unused]] Word first,
                 [[maybe_unused]] Word end) {
#ifdef ZURT_SANITIZE
    const Word last = std::min(end, A.NTOTA + 1);
    if (last > first)
        ASAN_POISON_MEMORY_REGION(A.words + (first - 1), static_cast<std::size_t>(last - first) * 8);
#endif
}

// Words ahead of LMAX that are poisoned in sanitizer builds: 32 MB.
constexpr Word kForbiddenAhead = Word{1} << 22;

// From so many words on they are cleared by pages: 1 MB.
constexpr Word kWordsGivenBack = Word{1} << 17;

void ForbidWordsAhead(WorkingVector& A) {
    const Word end = std::min(A.LMAX + kForbiddenAhead, A.NTOTA + 1);
    if (end <= A.forbiddenEnd)
        return;
    ForbidWords(A, std::max(A.LMAX, A.forbiddenEnd), end);
    A.forbiddenEnd = end;
}

void RequireWithin(const WorkingVector& A, Word first, Word n) {
    if (n > 0 && (first < 1 || first + n - 1 > A.NTOTA))
        StopWithLibraryError("a section of the working vector lies outside it: word " +
                             std::to_string(first) + ", length " + std::to_string(n));
}

} // namespace

void CreateWorkingVector(WorkingVector& A, Word size) {
    void* block = mmap(nullptr, static_cast<std::size_t>(size) * 8, PROT_READ | PROT_WRITE,
                       MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (block == MAP_FAILED)
        StopWithLibraryError("no address space for a working vector of " + std::to_string(size) + " words");
    A.words = static_cast<double*>(block);
    A.NTOTA = size;
    A.forbiddenEnd = 1;
    RestartWorkingVector(A);
}

void DestroyWorkingVector(WorkingVector& A) {
    if (A.words == nullptr)
        return;
    AllowWords(A, 1, A.NTOTA + 1);
    munmap(A.words, static_cast<std::size_t>(A.NTOTA) * 8);
    A.words = nullptr;
}

void RestartWorkingVector(WorkingVector& A) {
    ForbidWords(A, 1, A.LMAX);
    A.LMAX = 1;
    A.LMAXM = 1;
    A.sections.clear();
    ForbidWordsAhead(A);
}

Word TakeWords(WorkingVector& A, const char* name, Word n) {
    const Word first = A.LMAX;
    const Word taken = std::clamp<Word>(n, 0, kLargestLMAX);
    A.LMAX = std::min(first + taken, kLargestLMAX);
    A.sections.push_back({name, first, taken});
    AllowWords(A, first, A.LMAX);
    ForbidWordsAhead(A);
    return first;
}

void ReleaseFrom(WorkingVector& A, Word first) {
    ForbidWords(A, first, A.LMAX);
    A.LMAX = first;
    while (!A.sections.empty() && A.sections.back().first >= first)
        A.sections.pop_back();
}

const SectionRecord* FirstSectionOutside(const WorkingVector& A) {
    for (const SectionRecord& section : A.sections)
        if (section.first + section.length - 1 > A.NTOTA)
            return &section;
    return nullptr;
}

RealArray RealSection(const WorkingVector& A, Word first, Word n) {
    RequireWithin(A, first, n);
    return {A.words + (first - 1), n};
}

RealTable RealTableSection(const WorkingVector& A, Word first, Word rows, Word columns) {
    RequireWithin(A, first, rows * columns);
    return {A.words + (first - 1), rows, columns};
}

IntArray IntSection(const WorkingVector& A, Word first, Word n) {
    RequireWithin(A, first, n);
    return {reinterpret_cast<std::int32_t*>(A.words + (first - 1)), n};
}

IntTable IntTableSection(const WorkingVector& A, Word first, Word rows, Word columns) {
    RequireWithin(A, first, rows * columns);
    return {reinterpret_cast<std::int32_t*>(A.words + (first - 1)), rows, columns};
}

void ClearWords(const WorkingVector& A, Word first, Word last) {
    if (last < first)
        return;
    RequireWithin(A, first, last - first + 1);
    double* const begin = A.words + (first - 1);
    double* const end = A.words + last;
    // Whole pages are given back to the system: they are zero again and cost nothing until they are touched. `A`
    // begins on a page.
    const Word wordsOfPage = static_cast<Word>(sysconf(_SC_PAGESIZE)) / 8;
    double* const firstPage = A.words + (first - 1 + wordsOfPage - 1) / wordsOfPage * wordsOfPage;
    double* const lastPage = A.words + last / wordsOfPage * wordsOfPage;
    if (lastPage - firstPage < kWordsGivenBack ||
        madvise(firstPage, static_cast<std::size_t>(lastPage - firstPage) * 8, MADV_DONTNEED) != 0) {
        std::fill(begin, end, 0.0);
        return;
    }
    std::fill(begin, firstPage, 0.0);
    std::fill(lastPage, end, 0.0);
}

} // namespace zurt
