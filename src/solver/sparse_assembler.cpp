#include "solver/sparse_assembler.h"

#include "core/stop.h"
#include "solver/sparse_tree.h"

#ifdef __GLIBC__
#include <malloc.h>
#endif

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

namespace zurt {

namespace {

constexpr std::int32_t kTalkative = 1;

// Entries that a row gets in a regular mesh: 9 under quadrilaterals, 27 under bricks. A row may get more.
constexpr Word kCornersOfQuadrilateral = 4;
constexpr std::int32_t kPlacesInPlane = 9;
constexpr std::int32_t kPlacesInSpace = 27;

constexpr Word kMostSorted = 32;

/// Memory that is freed stays with the process, to be taken again by the next solve. Every solve takes and frees the same
/// arrays, here and in the solver; handed back to the system in between, their pages would all be cleared and mapped
/// anew, which is a tenth of the solver's time and half of the assembler's.
void KeepFreedMemory() {
#ifdef __GLIBC__
    constexpr int kNever = -1;
    mallopt(M_MMAP_MAX, 0); // large arrays too lie in the heap
    mallopt(M_TRIM_THRESHOLD, kNever);
#endif
}

/// The columns of an element in ascending order of their equations, those of one equation in the order given: no entry
/// gets its contributions in another order.
void SortColumns(Word n, ConstIntArray LM, Word* order) {
    for (Word i = 1; i <= n; ++i) {
        Word k = i - 1;
        for (; k > 0 && LM(order[k - 1]) > LM(i); --k)
            order[k] = order[k - 1];
        order[k] = i;
    }
}

void AddColumn(SparseTree& tree, Word n, Word i, ConstIntArray LM, ConstRealTable S) {
    const std::int32_t places = n <= kCornersOfQuadrilateral ? kPlacesInPlane : kPlacesInSpace;
    if (LM(i) == 0)
        return;
    for (Word j = tree.symmetryFlag != 0 ? i : 1; j <= n; ++j)
        if (LM(j) != 0 && S(j, i) != 0.0)
            AddToSparseTree(tree, SparseKey(LM(j), LM(i)), S(j, i), places);
}

void ZeroNode(SparseTree& /*tree*/, SparseNode& node) {
    node.value = 0.0;
}

void ExtractNode(SparseTree& walked, SparseNode& node) {
    const Word i = ++walked.outputIndex;
    walked.IRN(i) = SparseRowOf(node.key);
    walked.JCN(i) = SparseColumnOf(node.key);
    walked.A(i) = node.value;
}

void SparseDumpEntry(SparseTree& walked, SparseNode& node) {
    const std::int32_t place[2] = {SparseRowOf(node.key), SparseColumnOf(node.key)};
    std::fwrite(place, sizeof place, 1, walked.dumpStream);
    std::fwrite(&node.value, sizeof node.value, 1, walked.dumpStream);
}

} // namespace

void SparseInit(SparseTree& tree, std::int32_t symmetryFlag, std::int32_t verbosity) {
    if (verbosity == kTalkative)
        std::puts("Initializing Sparse Assembler...");
    KeepFreedMemory();
    EmptySparseTree(tree);
    tree.symmetryFlag = symmetryFlag;
}

void SparseZeroValues(SparseTree& tree) {
    WalkSparseTree(tree, ZeroNode);
}

void SparseAddElement(SparseTree& tree, Word n, ConstIntArray LM, ConstRealTable S) {
    PrefetchSparseRows(tree, LM, n);
    Word order[kMostSorted];
    if (n <= kMostSorted)
        SortColumns(n, LM, order);
    for (Word k = 1; k <= n; ++k)
        AddColumn(tree, n, n <= kMostSorted ? order[k - 1] : k, LM, S);
}

void SparseAddEntry(SparseTree& tree, std::int32_t row, std::int32_t column, double value) {
    if (value != 0.0)
        AddToSparseTree(tree, SparseKey(row, column), value, kPlacesInPlane);
}

void SparseNonzeroCount(const SparseTree& tree, std::int32_t& count) {
    count = tree.nodeCount;
}

void SparseExtract(SparseTree& tree, std::int32_t& count, IntArray IRN, IntArray JCN, RealArray A,
                   std::int32_t verbosity) {
    tree.IRN = IRN;
    tree.JCN = JCN;
    tree.A = A;
    tree.outputIndex = 0;
    WalkSparseTree(tree, ExtractNode);
    count = tree.outputIndex;
    if (verbosity == kTalkative)
        std::printf("Nonzero count: %d\n", count);
}

void SparseKill(SparseTree& tree, std::int32_t verbosity) {
    if (verbosity == kTalkative)
        std::puts("Killing Sparse Assembler...");
    ReleaseSparseNodes(tree);
}

void WriteSparseDump(SparseTree& tree, const char* name) {
    tree.dumpStream = std::fopen(name, "wb");
    if (tree.dumpStream == nullptr) {
        std::printf("Cannot open %s file for writing!\n", name);
        return;
    }
    WalkSparseTree(tree, SparseDumpEntry);
    const bool failed = std::ferror(tree.dumpStream) != 0;
    if (std::fclose(tree.dumpStream) != 0 || failed)
        StopWithLibraryError("can't write to " + std::string(name) + ": " + std::strerror(errno));
    tree.dumpStream = nullptr;
}

} // namespace zurt
