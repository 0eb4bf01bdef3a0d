#include "solver/sparse_tree.h"

#include "core/stop.h"

#include <algorithm>
#include <cstdlib>

namespace zurt {

namespace {

constexpr Word kNodesPerBlock = 8192;
// Equation numbers stay below: the coordinates of so many nodes alone would fill the working vector. Rows beyond, or
// below 0, are found from the root.
constexpr std::int64_t kRowsRemembered = std::int64_t{1} << 26;

enum class Side { Left, Right };

inline Side Opposite(Side side) {
    return side == Side::Left ? Side::Right : Side::Left;
}

inline SparseNode*& Child(SparseNode* node, Side side) {
    return side == Side::Left ? node->left : node->right;
}

/// The side of its parent on which the node hangs.
inline Side SideOf(const SparseNode* node) {
    return node == node->parent->left ? Side::Left : Side::Right;
}

// --- storage ------------------------------------------------------------------------------------------------------

SparseNode* TakeNode(SparseTree& tree) {
    if (tree.spare != nullptr) {
        SparseNode* node = tree.spare;
        tree.spare = node->right;
        return node;
    }
    if (tree.blocks.empty() || tree.takenOfBlock == kNodesPerBlock) {
        void* block = std::malloc(kNodesPerBlock * sizeof(SparseNode));
        if (block == nullptr)
            StopWithLibraryError("no memory left for the entries of the system matrix");
        tree.blocks.push_back(static_cast<SparseNode*>(block));
        tree.takenOfBlock = 0;
    }
    return tree.blocks.back() + tree.takenOfBlock++;
}

void GiveBackNode(SparseTree& tree, SparseNode* node) {
    node->right = tree.spare;
    tree.spare = node;
}

// --- the node of a row that was met last --------------------------------------------------------------------------

inline SparseNode* NodeMet(const SparseTree& tree, std::int32_t row) {
    return static_cast<std::uint32_t>(row) < tree.met.size() ? tree.met[static_cast<std::size_t>(row)]
                                                             : nullptr;
}

void RememberNode(SparseTree& tree, std::int32_t row, SparseNode* node) {
    if (row < 0 || row >= kRowsRemembered)
        return;
    const std::size_t place = static_cast<std::size_t>(row);
    if (place >= tree.met.size())
        tree.met.resize(std::max(place + 1, 2 * tree.met.size()), nullptr);
    tree.met[place] = node;
}

/// Before a node loses its key or its place.
void ForgetNode(SparseTree& tree, const SparseNode* node) {
    const std::int32_t row = SparseRow(node->key);
    if (NodeMet(tree, row) == node)
        tree.met[static_cast<std::size_t>(row)] = nullptr;
}

// --- search -------------------------------------------------------------------------------------------------------

/// Where a key stands, or would stand.
struct SparsePlace {
    SparseNode* node;   // the node of the key, or the sentinel
    SparseNode* parent; // its parent, or that of a new node; the sentinel for the root
};

inline SparsePlace Descend(const SparseTree& tree, SparseNode* node, SparseNode* parent, std::int64_t key) {
    while (node != &tree.sentinel && node->key != key) {
        parent = node;
        node = key < node->key ? node->left : node->right;
    }
    return {node, parent};
}

/// From `start` up to the first ancestor beyond the key, then down between that and the last one short of it.
SparsePlace FindFrom(const SparseTree& tree, SparseNode* start, std::int64_t key) {
    if (start->key == key)
        return {start, start->parent};
    const Side ahead = key < start->key ? Side::Left : Side::Right;
    SparseNode* lastShort = start;
    SparseNode* node = start;
    for (SparseNode* ancestor = node->parent; ancestor != &tree.sentinel; ancestor = node->parent) {
        if (node != Child(ancestor, ahead)) {
            if (ancestor->key == key)
                return {ancestor, ancestor->parent};
            if (ahead == Side::Right ? ancestor->key > key : ancestor->key < key)
                break;
            lastShort = ancestor;
        }
        node = ancestor;
    }
    return Descend(tree, Child(lastShort, ahead), lastShort, key);
}

// --- insertion ----------------------------------------------------------------------------------------------------

/// Puts `child` in the place of `node` under the parent of `node`. The parent of `child` is the caller's affair.
void HangInPlaceOf(SparseTree& tree, const SparseNode* node, SparseNode* child) {
    if (node->parent == &tree.sentinel)
        tree.root = child;
    else
        Child(node->parent, SideOf(node)) = child;
}

/// The node sinks towards `side`, its child of the other side takes its place. The parent of the sentinel is left
/// alone: a repair after a deletion may be using it.
void Rotate(SparseTree& tree, SparseNode* node, Side side) {
    SparseNode* riser = Child(node, Opposite(side));
    SparseNode* moved = Child(riser, side);
    Child(node, Opposite(side)) = moved;
    if (moved != &tree.sentinel)
        moved->parent = node;
    riser->parent = node->parent;
    HangInPlaceOf(tree, node, riser);
    Child(riser, side) = node;
    node->parent = riser;
}

void RepairAfterInsertion(SparseTree& tree, SparseNode* node) {
    while (node->parent->color == kRed) {
        SparseNode* grandparent = node->parent->parent;
        const Side side = SideOf(node->parent);
        SparseNode* uncle = Child(grandparent, Opposite(side));
        if (uncle->color == kRed) {
            node->parent->color = kBlack;
            uncle->color = kBlack;
            grandparent->color = kRed;
            node = grandparent;
            continue;
        }
        if (SideOf(node) != side) {
            node = node->parent;
            Rotate(tree, node, side);
        }
        node->parent->color = kBlack;
        grandparent->color = kRed;
        Rotate(tree, grandparent, Opposite(side));
    }
    tree.root->color = kBlack;
}

SparseNode* InsertNode(SparseTree& tree, SparseNode* parent, std::int64_t key, double value) {
    SparseNode* node = TakeNode(tree);
    *node = {key, value, parent, &tree.sentinel, &tree.sentinel, kRed};
    if (parent == &tree.sentinel)
        tree.root = node;
    else
        Child(parent, key < parent->key ? Side::Left : Side::Right) = node;
    RepairAfterInsertion(tree, node);
    return node;
}

// --- deletion -----------------------------------------------------------------------------------------------------

void RepairAfterDeletion(SparseTree& tree, SparseNode* node) {
    while (node != tree.root && node->color == kBlack) {
        SparseNode* parent = node->parent;
        const Side side = node == parent->left ? Side::Left : Side::Right;
        SparseNode* sibling = Child(parent, Opposite(side));
        if (sibling->color == kRed) {
            sibling->color = kBlack;
            parent->color = kRed;
            Rotate(tree, parent, side);
            sibling = Child(parent, Opposite(side));
        }
        if (sibling->left->color == kBlack && sibling->right->color == kBlack) {
            sibling->color = kRed;
            node = parent;
            continue;
        }
        if (Child(sibling, Opposite(side))->color == kBlack) {
            Child(sibling, side)->color = kBlack;
            sibling->color = kRed;
            Rotate(tree, sibling, Opposite(side));
            sibling = Child(parent, Opposite(side));
        }
        sibling->color = parent->color;
        parent->color = kBlack;
        Child(sibling, Opposite(side))->color = kBlack;
        Rotate(tree, parent, side);
        node = tree.root;
    }
    node->color = kBlack;
}

/// Takes the entry of a node out. The node that leaves is the node itself or its successor, whose entry then moves
/// into the node.
void DeleteNode(SparseTree& tree, SparseNode* node) {
    SparseNode* leaving = node;
    if (node->left != &tree.sentinel && node->right != &tree.sentinel)
        for (leaving = node->right; leaving->left != &tree.sentinel;)
            leaving = leaving->left;
    ForgetNode(tree, node);
    ForgetNode(tree, leaving);
    SparseNode* orphan = leaving->left != &tree.sentinel ? leaving->left : leaving->right;
    orphan->parent = leaving->parent; // of the sentinel too: the repair climbs from it
    HangInPlaceOf(tree, leaving, orphan);
    if (leaving != node) {
        node->key = leaving->key;
        node->value = leaving->value;
    }
    if (leaving->color == kBlack)
        RepairAfterDeletion(tree, orphan);
    GiveBackNode(tree, leaving);
}

void VisitSubtree(SparseTree& tree, SparseNode* node) {
    if (node == &tree.sentinel)
        return;
    VisitSubtree(tree, node->left);
    tree.visit(tree, *node);
    VisitSubtree(tree, node->right);
}

} // namespace

void EmptySparseTree(SparseTree& tree) {
    tree.sentinel = {-1, 0.0, &tree.sentinel, &tree.sentinel, &tree.sentinel, kBlack};
    tree.root = &tree.sentinel;
    tree.met.clear();
}

void AddToSparseTree(SparseTree& tree, std::int64_t key, double value) {
    const std::int32_t row = SparseRow(key);
    SparseNode* start = NodeMet(tree, row);
    SparsePlace place =
        start != nullptr ? FindFrom(tree, start, key) : Descend(tree, tree.root, &tree.sentinel, key);
    if (place.node == &tree.sentinel) {
        RememberNode(tree, row, InsertNode(tree, place.parent, key, value));
        return;
    }
    place.node->value += value;
    if (place.node->value == 0.0)
        DeleteNode(tree, place.node);
    else
        RememberNode(tree, row, place.node);
}

void WalkSparseTree(SparseTree& tree, SparseVisit visit) {
    tree.visit = visit;
    VisitSubtree(tree, tree.root);
}

void ReleaseSparseNodes(SparseTree& tree) {
    for (SparseNode* block : tree.blocks)
        std::free(block);
    tree.blocks.clear();
    tree.takenOfBlock = 0;
    tree.spare = nullptr;
    tree.met.clear();
    tree.met.shrink_to_fit();
}

} // namespace zurt
