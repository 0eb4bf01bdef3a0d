#include "solver/sparse_tree.h"

#include "core/stop.h"

#include <algorithm>
#include <cstdlib>

namespace zurt {

namespace {

constexpr Word kNodesPerBlock = 8192;
// Equation numbers stay below: the coordinates of so many nodes alone would fill the working vector. Rows beyond, or
// below 1, share one record.
constexpr std::int64_t kRowsRemembered = std::int64_t{1} << 24;
// Steps along the sequence that are tried ahead of a search in the tree.
constexpr int kMostSteps = 12;
constexpr std::size_t kCacheLine = 64;
// Bytes ahead of a walk that are called into the cache: a row or two in the usual order of memory.
constexpr std::size_t kWalkAhead = 3072;

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

/// The place of a row's record in `rows`, which may be shorter.
inline std::size_t RowPlace(std::int32_t row) {
    return row > 0 && row < kRowsRemembered ? static_cast<std::size_t>(row) : 0;
}

inline SparseRow& RowAt(SparseTree& tree, std::size_t place) {
    if (place >= tree.rows.size())
        tree.rows.resize(std::max(place + 1, 2 * tree.rows.size()));
    return tree.rows[place];
}

/// Brings `count` nodes from `node` on into the cache, to be written.
inline void PrefetchNodes(const SparseNode* node, std::int32_t count) {
    const char* bytes = reinterpret_cast<const char*>(node);
    for (std::size_t i = 0; i < static_cast<std::size_t>(count) * sizeof(SparseNode); i += kCacheLine)
        __builtin_prefetch(bytes + i, 1);
}

void TakeStretch(SparseTree& tree, SparseRow& row, std::int32_t places) {
    if (tree.blocks.empty() || tree.takenOfBlock + places > kNodesPerBlock) {
        void* block = std::malloc(kNodesPerBlock * sizeof(SparseNode));
        if (block == nullptr)
            StopWithLibraryError("no memory left for the entries of the system matrix");
        tree.blocks.push_back(static_cast<SparseNode*>(block));
        tree.takenOfBlock = 0;
    }
    row.stretch = tree.blocks.back() + tree.takenOfBlock;
    row.places = places;
    row.taken = 0;
    tree.takenOfBlock += places;
    PrefetchNodes(row.stretch, places);
}

SparseNode* TakeNode(SparseTree& tree, SparseRow& row, std::int32_t rowPlaces) {
    if (tree.spare != nullptr) {
        SparseNode* node = tree.spare;
        tree.spare = node->next;
        return node;
    }
    if (row.taken == row.places)
        TakeStretch(tree, row, rowPlaces);
    return row.stretch + row.taken++;
}

void GiveBackNode(SparseTree& tree, SparseNode* node) {
    node->next = tree.spare;
    tree.spare = node;
}

/// Before a node loses its key or its place.
void ForgetNode(SparseTree& tree, const SparseNode* node) {
    SparseRow& row = tree.rows[RowPlace(SparseRowOf(node->key))];
    if (row.met == node)
        row.met = nullptr;
    if (row.lowest == node)
        row.lowest = nullptr;
}

// --- search -------------------------------------------------------------------------------------------------------

/// Where a key stands, or would stand.
struct SparsePlace {
    SparseNode* node;             // the node of the key, or the sentinel; then
    SparseNode* parent = nullptr; // the parent of a new node, the sentinel for the root,
    SparseNode* before = nullptr; // and the node of the next lower key, the sentinel when there is none
};

SparsePlace Descend(const SparseTree& tree, SparseNode* node, SparseNode* parent, SparseNode* before,
                    std::int64_t key) {
    while (node != &tree.sentinel && node->key != key) {
        parent = node;
        if (key > node->key)
            before = node;
        node = key < node->key ? node->left : node->right;
    }
    return {node, parent, before};
}

/// From `start` up to the first ancestor beyond the key, then down between that and the last one short of it.
SparsePlace FindFrom(SparseTree& tree, SparseNode* start, std::int64_t key) {
    if (start->key == key)
        return {start};
    const Side ahead = key < start->key ? Side::Left : Side::Right;
    SparseNode* before = ahead == Side::Right ? start : &tree.sentinel;
    SparseNode* lastShort = start;
    SparseNode* node = start;
    for (SparseNode* ancestor = node->parent; ancestor != &tree.sentinel; ancestor = node->parent) {
        if (node != Child(ancestor, ahead)) {
            if (ancestor->key == key)
                return {ancestor};
            if (ancestor->key < key)
                before = ancestor;
            if (ahead == Side::Right ? ancestor->key > key : ancestor->key < key)
                break;
            lastShort = ancestor;
        }
        node = ancestor;
    }
    return Descend(tree, Child(lastShort, ahead), lastShort, before, key);
}

/// Along the sequence from `start`, whose key is not above the key sought.
SparsePlace FindAlong(SparseTree& tree, SparseNode* start, std::int64_t key) {
    if (start->key == key)
        return {start};
    SparseNode* before = start;
    for (int step = 0; step < kMostSteps; ++step) {
        SparseNode* node = before->next;
        // Of two neighbours in the sequence one has a free place towards the other.
        if (node == &tree.sentinel || node->key > key)
            return {&tree.sentinel, before->right == &tree.sentinel ? before : node, before};
        if (node->key == key)
            return {node};
        before = node;
    }
    return FindFrom(tree, before, key);
}

/// The columns of an element ascend, and so do those that elements begin with, most of the time: from the column
/// before, or from the column that the element before began with, it is a few steps.
SparsePlace FindInRow(SparseTree& tree, SparseRow& row, std::int64_t key) {
    if (row.met == nullptr)
        return Descend(tree, tree.root, &tree.sentinel, &tree.sentinel, key);
    if (row.met->key <= key)
        return FindAlong(tree, row.met, key);
    SparseNode* lowest = row.lowest;
    row.lowest = nullptr; // the node that is found now
    if (lowest != nullptr && lowest->key <= key)
        return FindAlong(tree, lowest, key);
    return FindFrom(tree, row.met, key);
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

/// Hangs a new node in its place.
void InsertNode(SparseTree& tree, SparseNode* node, const SparsePlace& place, std::int64_t key,
                double value) {
    *node = {key, value, place.parent, &tree.sentinel, &tree.sentinel, kRed, place.before->next};
    place.before->next = node;
    if (place.parent == &tree.sentinel)
        tree.root = node;
    else
        Child(place.parent, key < place.parent->key ? Side::Left : Side::Right) = node;
    ++tree.nodeCount;
    RepairAfterInsertion(tree, node);
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

/// The node of the next lower key; the sentinel when there is none.
SparseNode* NodeBefore(SparseTree& tree, SparseNode* node) {
    if (node->left != &tree.sentinel) {
        for (node = node->left; node->right != &tree.sentinel;)
            node = node->right;
        return node;
    }
    while (node->parent != &tree.sentinel && SideOf(node) == Side::Left)
        node = node->parent;
    return node->parent;
}

/// Takes the entry of a node out. The node that leaves is the node itself or its successor, whose entry then moves
/// into the node.
void DeleteNode(SparseTree& tree, SparseNode* node) {
    const bool moves = node->left != &tree.sentinel && node->right != &tree.sentinel;
    SparseNode* leaving = moves ? node->next : node;
    ForgetNode(tree, node);
    ForgetNode(tree, leaving);
    (moves ? node : NodeBefore(tree, node))->next = leaving->next;
    SparseNode* orphan = leaving->left != &tree.sentinel ? leaving->left : leaving->right;
    orphan->parent = leaving->parent; // of the sentinel too: the repair climbs from it
    HangInPlaceOf(tree, leaving, orphan);
    if (moves) {
        node->key = leaving->key;
        node->value = leaving->value;
    }
    if (leaving->color == kBlack)
        RepairAfterDeletion(tree, orphan);
    GiveBackNode(tree, leaving);
    --tree.nodeCount;
}

} // namespace

SparseTree::~SparseTree() {
    ReleaseSparseNodes(*this);
}

void EmptySparseTree(SparseTree& tree) {
    tree.sentinel = {-1, 0.0, &tree.sentinel, &tree.sentinel, &tree.sentinel, kBlack, &tree.sentinel};
    tree.root = &tree.sentinel;
    tree.nodeCount = 0;
    tree.rows.clear();
}

void PrefetchSparseRows(const SparseTree& tree, ConstIntArray LM, Word n) {
    for (Word j = 1; j <= n; ++j) {
        const std::size_t place = RowPlace(LM(j));
        if (place < tree.rows.size())
            PrefetchNodes(tree.rows[place].stretch, tree.rows[place].places);
    }
}

void AddToSparseTree(SparseTree& tree, std::int64_t key, double value, std::int32_t rowPlaces) {
    SparseRow& row = RowAt(tree, RowPlace(SparseRowOf(key)));
    const SparsePlace place = FindInRow(tree, row, key);
    SparseNode* node = place.node;
    if (node == &tree.sentinel) {
        node = TakeNode(tree, row, rowPlaces);
        InsertNode(tree, node, place, key, value);
    } else {
        node->value += value;
        if (node->value == 0.0) {
            DeleteNode(tree, node);
            return;
        }
    }
    row.met = node;
    if (row.lowest == nullptr)
        row.lowest = node;
}

void WalkSparseTree(SparseTree& tree, SparseVisit visit) {
    for (SparseNode* node = tree.sentinel.next; node != &tree.sentinel; node = node->next) {
        __builtin_prefetch(reinterpret_cast<const char*>(node) + kWalkAhead);
        visit(tree, *node);
    }
}

void ReleaseSparseNodes(SparseTree& tree) {
    for (SparseNode* block : tree.blocks)
        std::free(block);
    tree.blocks.clear();
    tree.takenOfBlock = 0;
    tree.spare = nullptr;
    tree.rows.clear();
    tree.rows.shrink_to_fit();
}

} // namespace zurt
