// The red-black tree beneath the sparse assembler: entries of the system matrix in ascending (row, column).
//
// A node's key holds the row in its upper and the column in its lower 32 bits, so that the in-order sequence runs row
// by row and within a row column by column. One sentinel stands for every leaf and for the parent of the root. Each
// node also knows the next one of the sequence: walks and short searches go along it instead of up and down.
//
// Element matrices come back to the same rows again and again. For each row the tree remembers two nodes to search
// from, and keeps the row's nodes side by side in memory, in the order of the rows as far as the rows first come in
// theirs: the misses of the caches, which cost more than the steps of the algorithms, are foreseen and few. Tree
// algorithms: Cormen, Leiserson, Rivest, Introduction to Algorithms, 1990. Callers: solver/sparse_assembler.cpp; tests
// look at the nodes.
#pragma once

#include "core/array_view.h"

#include <cstdint>
#include <cstdio>
#include <vector>

namespace zurt {

constexpr std::int32_t kRed = 0;
constexpr std::int32_t kBlack = 1;

struct SparseNode {
    std::int64_t key;
    double value; // the sum so far
    SparseNode* parent;
    SparseNode* left;  // keys below this node's
    SparseNode* right; // keys not below this node's
    std::int32_t color;
    SparseNode* next; // the node of the next higher key; the sentinel behind the last one
};

/// What is kept for one row of the matrix.
struct SparseRow {
    SparseNode* met = nullptr; // the node that was met last; null: none is known
    SparseNode* lowest =
        nullptr; // the node that was met when the columns last went back; null: none is known
    SparseNode* stretch = nullptr; // the row's newest stretch of memory
    std::int32_t places = 0;       // nodes that the stretch has room for
    std::int32_t taken = 0;        // and how many of these it has given away
};

struct SparseTree;

/// What a walk does at each node.
using SparseVisit = void (*)(SparseTree& tree, SparseNode& node);

struct SparseTree {
    SparseTree() = default;
    ~SparseTree();                          // gives its nodes back
    SparseTree(const SparseTree&) = delete; // nodes point at the sentinel
    SparseTree& operator=(const SparseTree&) = delete;

    SparseNode sentinel{-1,      0.0,    nullptr, nullptr,
                        nullptr, kBlack, nullptr}; // `next`: the node of the lowest key
    SparseNode* root = &sentinel;
    std::int32_t nodeCount = 0;
    std::int32_t symmetryFlag = 0;

    // A walk in progress.
    SparseVisit visit = nullptr;
    IntArray IRN, JCN; // targets of an extraction
    RealArray A;
    std::int32_t outputIndex = 0;
    std::FILE* dumpStream = nullptr;

    // Storage of the nodes.
    std::vector<SparseNode*> blocks;
    Word takenOfBlock = 0;       // places of the last block that rows have
    SparseNode* spare = nullptr; // nodes given back, chained by `next`
    std::vector<SparseRow> rows; // by row; the first record is for all rows that have none of their own
};

inline std::int64_t SparseKey(std::int32_t row, std::int32_t column) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(static_cast<std::uint32_t>(row)) << 32 |
                                     static_cast<std::uint32_t>(column));
}
inline std::int32_t SparseRowOf(std::int64_t key) {
    return static_cast<std::int32_t>(key >> 32);
}
inline std::int32_t SparseColumnOf(std::int64_t key) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(key & 0xffffffff));
}

/// Makes the tree empty. Nodes that are still there are not given back before ReleaseSparseNodes.
void EmptySparseTree(SparseTree& tree);

/// Calls the nodes of these rows into the innermost cache.
void PrefetchSparseRows(const SparseTree& tree, ConstIntArray LM, Word n);

/// Adds `value`, which is not 0.0, to the entry of the key: makes its node, or deletes it when the sum is exactly 0.0.
///   rowPlaces  how many entries the row is expected to get at most, 1 or more
void AddToSparseTree(SparseTree& tree, std::int64_t key, double value, std::int32_t rowPlaces);

/// Visits every node in ascending order of keys.
void WalkSparseTree(SparseTree& tree, SparseVisit visit);

/// Gives all nodes back to the heap, block by block. The root is left as it was.
void ReleaseSparseNodes(SparseTree& tree);

} // namespace zurt
