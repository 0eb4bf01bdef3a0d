// The red-black tree beneath the sparse assembler: entries of the system matrix in ascending (row, column).
//
// A node's key holds the row in its upper and the column in its lower 32 bits, so that the in-order sequence runs row
// by row and within a row column by column. One sentinel stands for every leaf and for the parent of the root. Nodes
// come from the heap in blocks. Element matrices come back to the same rows again and again: for each row the tree
// remembers the node met last and searches from there, up to the smallest subtree that must hold the key and then
// down, which is a few steps where a search from the root takes twenty. Tree algorithms: Cormen, Leiserson, Rivest,
// Introduction to Algorithms, 1990. Callers: solver/sparse_assembler.cpp; tests look at the nodes.
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
};

struct SparseTree;

/// What a walk does at each node.
using SparseVisit = void (*)(SparseTree& tree, SparseNode& node);

struct SparseTree {
    SparseNode sentinel{-1, 0.0, nullptr, nullptr, nullptr, kBlack};
    SparseNode* root = &sentinel;
    std::int32_t symmetryFlag = 0;

    // A walk in progress.
    SparseVisit visit = nullptr;
    IntArray IRN, JCN; // targets of an extraction
    RealArray A;
    std::int32_t outputIndex = 0;
    std::int32_t nodeCount = 0;
    std::FILE* dumpStream = nullptr;

    // Storage of the nodes.
    std::vector<SparseNode*> blocks;
    Word takenOfBlock = 0;        // nodes handed out of the last block
    SparseNode* spare = nullptr;  // nodes given back, chained by `right`
    std::vector<SparseNode*> met; // by row: the node of the row that was met last; null: none is known
};

inline std::int64_t SparseKey(std::int32_t row, std::int32_t column) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(static_cast<std::uint32_t>(row)) << 32 |
                                     static_cast<std::uint32_t>(column));
}
inline std::int32_t SparseRow(std::int64_t key) {
    return static_cast<std::int32_t>(key >> 32);
}
inline std::int32_t SparseColumn(std::int64_t key) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(key & 0xffffffff));
}

/// Makes the tree empty. Nodes that are still there are not given back before ReleaseSparseNodes.
void EmptySparseTree(SparseTree& tree);

/// Adds `value`, which is not 0.0, to the entry of the key: makes its node, or deletes it when the sum is exactly 0.0.
void AddToSparseTree(SparseTree& tree, std::int64_t key, double value);

/// Visits every node in ascending order of keys. The walk recurses: its depth is the height of the tree, at most
/// twice the binary logarithm of the number of nodes.
void WalkSparseTree(SparseTree& tree, SparseVisit visit);

/// Gives all nodes back to the heap, block by block. The root is left as it was.
void ReleaseSparseNodes(SparseTree& tree);

} // namespace zurt
