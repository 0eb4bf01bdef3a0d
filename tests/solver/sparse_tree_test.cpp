// The tree of the sparse assembler against std::map, operation by operation.
#include "solver/sparse_tree.h"

#include "solver/sparse_assembler.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <iterator>
#include <map>
#include <random>
#include <vector>

namespace {

using zurt::SparseNode;
using zurt::SparseTree;
using Model = std::map<std::int64_t, double>;

struct Place {
    std::int32_t row, column;
};

/// Ascends by row and then by column; columns below zero follow all others.
std::int64_t KeyOf(Place place) {
    return std::int64_t{4294967296} * place.row + static_cast<std::uint32_t>(place.column);
}

// Walks the subtree against the model, from `next` on, and returns its black height; every fault is reported.
int CheckSubtree(const SparseTree& tree, const SparseNode* node, Model::const_iterator& next,
                 Model::const_iterator end) {
    if (node == &tree.sentinel)
        return 1;
    if (node->color == zurt::kRed) {
        EXPECT_EQ(node->left->color, zurt::kBlack);
        EXPECT_EQ(node->right->color, zurt::kBlack);
    }
    for (const SparseNode* child : {node->left, node->right}) {
        if (child != &tree.sentinel) {
            EXPECT_EQ(child->parent, node);
        }
    }
    const int left = CheckSubtree(tree, node->left, next, end);
    if (next == end) {
        ADD_FAILURE() << "more nodes than entries";
    } else {
        EXPECT_EQ(node->key, next->first);
        EXPECT_EQ(node->value, next->second);
        ++next;
    }
    const int right = CheckSubtree(tree, node->right, next, end);
    EXPECT_EQ(left, right) << "black heights differ";
    return left + (node->color == zurt::kBlack ? 1 : 0);
}

// Faults: a sequence that an insertion misses or that a deletion breaks.
void CheckSequence(const SparseTree& tree, const Model& model) {
    const SparseNode* node = tree.sentinel.next;
    for (const auto& entry : model) {
        ASSERT_NE(node, &tree.sentinel) << "the sequence ends early";
        ASSERT_EQ(node->key, entry.first);
        node = node->next;
    }
    EXPECT_EQ(node, &tree.sentinel) << "the sequence goes on";
    EXPECT_EQ(tree.nodeCount, static_cast<std::int32_t>(model.size()));
}

// Content equal to the model, links both ways, colours, black heights, the sentinel's own fields.
void CheckWhole(const Model& model) {
    const SparseTree& tree = zurt::CurrentSparseTree();
    Model::const_iterator next = model.begin();
    CheckSubtree(tree, tree.root, next, model.end());
    EXPECT_TRUE(next == model.end()) << "fewer nodes than entries";
    CheckSequence(tree, model);
    EXPECT_EQ(tree.root->color, zurt::kBlack);
    EXPECT_EQ(tree.sentinel.color, zurt::kBlack);
    EXPECT_EQ(tree.sentinel.key, -1);
    if (tree.root != &tree.sentinel) {
        EXPECT_EQ(tree.root->parent, &tree.sentinel);
    }
}

void Add(Model& model, Place place, double value) {
    zurt::SparseAddEntry(place.row, place.column, value);
    if (value == 0.0)
        return;
    const auto [entry, isNew] = model.insert({KeyOf(place), value});
    if (!isNew && (entry->second += value) == 0.0)
        model.erase(entry);
}

/// The place of an entry of the model, by chance.
Place AnyPlace(const Model& model, std::mt19937& random) {
    const std::int64_t key =
        std::next(model.begin(), static_cast<std::ptrdiff_t>(random() % model.size()))->first;
    return {zurt::SparseRowOf(key), zurt::SparseColumnOf(key)};
}

// Small whole numbers meet and cancel often. Every other thousand operations deletes more than it adds, so the tree
// shrinks to nothing and grows again. The rows reach beyond those that the tree remembers: below zero, above its
// limit, and the place whose key is the sentinel's own.
TEST(SparseTree, EqualsAMapAfterEachOf100000Operations) {
    const std::int32_t rows[] = {1, 2, 3, 4, 5, 6, 7, 19, 20, 21, 100000000, 2147483647, -1, -7};
    std::mt19937 random(1);
    Model model;
    zurt::SparseInit(0, 0);
    for (int operation = 0; operation < 100000 && !HasFailure(); ++operation) {
        Place place{rows[random() % std::size(rows)], static_cast<std::int32_t>(random() % 14) - 1};
        double value = static_cast<double>(random() % 7) - 3.0;
        const bool shrinking = operation / 1000 % 2 == 1;
        if (!model.empty() && random() % 10 < (shrinking ? 8u : 2u)) {
            place = AnyPlace(model, random);
            value = -model[KeyOf(place)];
        }
        Add(model, place, value);
        CheckWhole(model);
    }
    EXPECT_FALSE(HasFailure());
    zurt::SparseKill(0);
}

// The same in a tree of thousands of nodes, all of it looked at every 2000 operations.
TEST(SparseTree, EqualsAMapInAWideTree) {
    std::mt19937 random(2);
    Model model;
    zurt::SparseInit(0, 0);
    std::vector<Place> places;
    for (int operation = 1; operation <= 100000 && !HasFailure(); ++operation) {
        Place place{static_cast<std::int32_t>(random() % 300) + 1,
                    static_cast<std::int32_t>(random() % 300) + 1};
        double value = static_cast<double>(random() % 5) - 2.0;
        if (!places.empty() && random() % 2 == 0) {
            place = places[random() % places.size()];
            const auto entry = model.find(KeyOf(place));
            if (entry != model.end() && random() % 3 != 0)
                value = -entry->second;
        } else {
            places.push_back(place);
        }
        Add(model, place, value);
        if (operation % 2000 == 0)
            CheckWhole(model);
    }
    EXPECT_GT(model.size(), 1000u);
    zurt::SparseKill(0);
}

} // namespace
