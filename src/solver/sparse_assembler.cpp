#include "solver/sparse_assembler.h"

#include "core/stop.h"
#include "solver/sparse_tree.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>

namespace zurt {

namespace {

constexpr std::int32_t kTalkative = 1;

SparseTree tree; // the one mutable global of the program

void ZeroNode(SparseTree& /*tree*/, SparseNode& node) {
    node.value = 0.0;
}

void CountNode(SparseTree& walked, SparseNode& /*node*/) {
    ++walked.nodeCount;
}

void ExtractNode(SparseTree& walked, SparseNode& node) {
    const Word i = ++walked.outputIndex;
    walked.IRN(i) = SparseRow(node.key);
    walked.JCN(i) = SparseColumn(node.key);
    walked.A(i) = node.value;
}

void SparseDumpEntry(SparseTree& walked, SparseNode& node) {
    const std::int32_t place[2] = {SparseRow(node.key), SparseColumn(node.key)};
    std::fwrite(place, sizeof place, 1, walked.dumpStream);
    std::fwrite(&node.value, sizeof node.value, 1, walked.dumpStream);
}

} // namespace

void SparseInit(std::int32_t symmetryFlag, std::int32_t verbosity) {
    if (verbosity == kTalkative)
        std::puts("Initializing Sparse Assembler...");
    EmptySparseTree(tree);
    tree.symmetryFlag = symmetryFlag;
}

void SparseZeroValues() {
    WalkSparseTree(tree, ZeroNode);
}

void SparseAddElement(Word n, ConstIntArray LM, ConstRealTable S) {
    for (Word i = 1; i <= n; ++i) {
        if (LM(i) == 0)
            continue;
        for (Word j = tree.symmetryFlag != 0 ? i : 1; j <= n; ++j)
            if (LM(j) != 0)
                SparseAddEntry(LM(j), LM(i), S(j, i));
    }
}

void SparseAddEntry(std::int32_t row, std::int32_t column, double value) {
    if (value != 0.0)
        AddToSparseTree(tree, SparseKey(row, column), value);
}

void SparseNonzeroCount(std::int32_t& count) {
    tree.nodeCount = 0;
    WalkSparseTree(tree, CountNode);
    count = tree.nodeCount;
}

void SparseExtract(std::int32_t& count, IntArray IRN, IntArray JCN, RealArray A, std::int32_t verbosity) {
    tree.IRN = IRN;
    tree.JCN = JCN;
    tree.A = A;
    tree.outputIndex = 0;
    WalkSparseTree(tree, ExtractNode);
    count = tree.outputIndex;
    if (verbosity == kTalkative)
        std::printf("Nonzero count: %d\n", count);
}

void SparseKill(std::int32_t verbosity) {
    if (verbosity == kTalkative)
        std::puts("Killing Sparse Assembler...");
    ReleaseSparseNodes(tree);
}

void WriteSparseDump(const char* name) {
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

const SparseTree& CurrentSparseTree() {
    return tree;
}

} // namespace zurt
