// The sparse assembler, and its tree against std::map, operation by operation.
#include "solver/sparse_assembler.h"
#include "solver/sparse_tree.h"
#include "support/run_deck.h"

#include <cmath>
#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <iterator>
#include <limits>
#include <map>
#include <random>

namespace {

using Model = std::map<std::int64_t, double>;
using zurt::SparseNode;
using zurt::SparseTree;
using zurt::Word;

zurt::SparseTree tree;

struct Entries {
    std::vector<std::int32_t> rows, columns;
    std::vector<double> values;
};

Entries Extract() {
    std::int32_t count = 0;
    zurt::SparseNonzeroCount(tree, count);
    const std::size_t size = static_cast<std::size_t>(count);
    Entries entries{std::vector<std::int32_t>(size), std::vector<std::int32_t>(size),
                    std::vector<double>(size)};
    std::int32_t extracted = -1;
    zurt::SparseExtract(tree, extracted, {entries.rows.data(), count}, {entries.columns.data(), count},
                        {entries.values.data(), count}, 0);
    EXPECT_EQ(extracted, count);
    return entries;
}

/// Adds a square element matrix given row by row.
void AddElement(std::vector<std::int32_t> LM, const std::vector<double>& byRows) {
    const std::size_t n = LM.size();
    std::vector<double> S(n * n);
    for (std::size_t row = 0; row < n; ++row)
        for (std::size_t column = 0; column < n; ++column)
            S[row + n * column] = byRows[n * row + column];
    const Word size = static_cast<Word>(n);
    zurt::SparseAddElement(tree, size, {LM.data(), size}, {S.data(), size, size});
}

struct SparseAssembler : testing::Test {
    void SetUp() override { zurt::SparseInit(tree, 0, 0); }
    void TearDown() override { zurt::SparseKill(tree, 0); }
};

// Faults: a test for zero that swallows what is not a number, or deletes by it.
TEST_F(SparseAssembler, NotANumberIsKept) {
    zurt::SparseAddEntry(tree, 1, 1, std::numeric_limits<double>::quiet_NaN());
    zurt::SparseAddEntry(tree, 1, 1, 1.0);
    const Entries entries = Extract();
    ASSERT_EQ(entries.values.size(), 1u);
    EXPECT_TRUE(std::isnan(entries.values[0]));
}

// Fault: sums taken in another order than that of arrival.
TEST_F(SparseAssembler, SumsInOrderOfArrival) {
    std::mt19937 random(5);
    double expected = 0.0;
    for (int i = 0; i < 1000; ++i) {
        const double value = std::ldexp(static_cast<double>(random()) + 0.5, static_cast<int>(random() % 60));
        zurt::SparseAddEntry(tree, 2, 1, value);
        zurt::SparseAddEntry(tree, 1, 2, 1.0);
        expected += value;
    }
    EXPECT_EQ(Extract().values, (std::vector<double>{1000.0, expected}));
}

// Faults: row and column exchanged, one triangle left out or mirrored, a zero of LM that drops too little or too much.
TEST_F(SparseAssembler, ElementGoesInWithBothTrianglesAndWithoutItsZeros) {
    AddElement({5, 0, 2}, {11, 12, 13, 21, 22, 23, 31, 0, 33});
    AddElement({2, 5}, {1, 2, 0, 4});
    const Entries entries = Extract();
    EXPECT_EQ(entries.rows, (std::vector<std::int32_t>{2, 2, 5, 5}));
    EXPECT_EQ(entries.columns, (std::vector<std::int32_t>{2, 5, 2, 5}));
    EXPECT_EQ(entries.values, (std::vector<double>{34, 33, 13, 15}));
}

// Fault: an equation that stands twice in one element gets its contributions in another order than they come.
TEST_F(SparseAssembler, EquationTwiceInAnElementSumsInTheOrderOfItsPlaces) {
    AddElement({7, 3, 7}, {1e16, 0, 1, 0, 5, 0, -1e16, 0, 2});
    const Entries entries = Extract();
    EXPECT_EQ(entries.rows, (std::vector<std::int32_t>{3, 7}));
    EXPECT_EQ(entries.values, (std::vector<double>{5, 3}));
}

// Fault: the symmetry flag ignored, or the other half taken.
TEST_F(SparseAssembler, SymmetryFlagTakesOneHalf) {
    zurt::SparseInit(tree, 1, 0);
    AddElement({1, 2, 3}, {1, 2, 3, 4, 5, 6, 7, 8, 9});
    const Entries entries = Extract();
    EXPECT_EQ(entries.rows, (std::vector<std::int32_t>{1, 2, 2, 3, 3, 3}));
    EXPECT_EQ(entries.columns, (std::vector<std::int32_t>{1, 1, 2, 1, 2, 3}));
    EXPECT_EQ(entries.values, (std::vector<double>{1, 4, 5, 7, 8, 9}));
}

// Only a zero of LM is skipped.
TEST_F(SparseAssembler, NegativeEquationReachesTheTree) {
    AddElement({-1, 4}, {1, 2, 3, 4});
    const Entries entries = Extract();
    EXPECT_EQ(entries.rows, (std::vector<std::int32_t>{-1, -1, 4, 4}));
    EXPECT_EQ(entries.columns.size(), 4u);
}

// Faults: zeroing that deletes; entries that survive the next start.
TEST_F(SparseAssembler, ZeroingKeepsThePatternAndStartingDropsIt) {
    AddElement({1, 2}, {1, 2, 3, 4});
    zurt::SparseZeroValues(tree);
    EXPECT_EQ(Extract().values, (std::vector<double>{0, 0, 0, 0}));
    zurt::SparseAddEntry(tree, 1, 2, 6.0);
    EXPECT_EQ(Extract().values, (std::vector<double>{0, 6, 0, 0}));
    zurt::SparseInit(tree, 0, 0);
    EXPECT_TRUE(Extract().rows.empty());
    zurt::SparseAddEntry(tree, 2, 2, 1.0);
    EXPECT_EQ(Extract().values, (std::vector<double>{1}));
}

TEST_F(SparseAssembler, SpeaksUnderVerbosityOneOnly) {
    std::int32_t count = 0;
    std::int32_t row = 0, column = 0;
    double value = 0.0;
    for (const std::int32_t verbosity : {0, 1, 2}) {
        zurt::SparseKill(tree, 0);
        testing::internal::CaptureStdout();
        zurt::SparseInit(tree, 0, verbosity);
        zurt::SparseAddEntry(tree, 1, 1, 2.0);
        zurt::SparseExtract(tree, count, {&row, 1}, {&column, 1}, {&value, 1}, verbosity);
        zurt::SparseKill(tree, verbosity);
        EXPECT_EQ(testing::internal::GetCapturedStdout(),
                  verbosity == 1
                      ? "Initializing Sparse Assembler...\nNonzero count: 1\nKilling Sparse Assembler...\n"
                      : "");
        zurt::SparseInit(tree, 0, 0);
    }
}

// Faults: a header, a wrong order of fields, a record of another size, a stop where the file can't be opened.
TEST_F(SparseAssembler, DumpHoldsBareRecords) {
    AddElement({1, 3}, {0.5, 0, 2, 4});
    const std::string name = zurt_test::MakeTemporaryFolder() + "/osparse.bin";
    zurt::WriteSparseDump(tree, name.c_str());
    const std::int32_t places[3][2] = {{1, 1}, {3, 1}, {3, 3}};
    const double values[3] = {0.5, 2, 4};
    std::string expected;
    for (int i = 0; i < 3; ++i) {
        expected.append(reinterpret_cast<const char*>(places[i]), 8);
        expected.append(reinterpret_cast<const char*>(&values[i]), 8);
    }
    EXPECT_EQ(zurt_test::ReadFile(name), expected);

    testing::internal::CaptureStdout();
    zurt::WriteSparseDump(tree, "/no such folder/osparse.bin");
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Cannot open /no such folder/osparse.bin file for writing!\n");
}

struct Place {
    std::int32_t row, column;
};

/// Ascends by row and then by column; columns below zero follow all others.
std::int64_t KeyOf(Place place) {
    return std::int64_t{4294967296} * place.row + static_cast<std::uint32_t>(place.column);
}

// Walks the subtree against the model, from `next` on, and returns its black height; every fault is reported.
int CheckSubtree(const SparseTree& walked, const SparseNode* node, Model::const_iterator& next,
                 Model::const_iterator end) {
    if (node == &walked.sentinel)
        return 1;
    if (node->color == zurt::kRed) {
        EXPECT_EQ(node->left->color, zurt::kBlack);
        EXPECT_EQ(node->right->color, zurt::kBlack);
    }
    for (const SparseNode* child : {node->left, node->right}) {
        if (child != &walked.sentinel) {
            EXPECT_EQ(child->parent, node);
        }
    }
    const int left = CheckSubtree(walked, node->left, next, end);
    if (next == end) {
        ADD_FAILURE() << "more nodes than entries";
    } else {
        EXPECT_EQ(node->key, next->first);
        EXPECT_EQ(node->value, next->second);
        ++next;
    }
    const int right = CheckSubtree(walked, node->right, next, end);
    EXPECT_EQ(left, right) << "black heights differ";
    return left + (node->color == zurt::kBlack ? 1 : 0);
}

// Faults: a sequence that an insertion misses or that a deletion breaks.
void CheckSequence(const SparseTree& walked, const Model& model) {
    const SparseNode* node = walked.sentinel.next;
    for (const auto& entry : model) {
        ASSERT_NE(node, &walked.sentinel) << "the sequence ends early";
        ASSERT_EQ(node->key, entry.first);
        node = node->next;
    }
    EXPECT_EQ(node, &walked.sentinel) << "the sequence goes on";
    EXPECT_EQ(walked.nodeCount, static_cast<std::int32_t>(model.size()));
}

// Content equal to the model, links both ways, colours, black heights, the sentinel's own fields.
void CheckWhole(const Model& model) {
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
    zurt::SparseAddEntry(tree, place.row, place.column, value);
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
    zurt::SparseInit(tree, 0, 0);
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
    zurt::SparseKill(tree, 0);
}

// The same in a tree of thousands of nodes, all of it looked at every 2000 operations.
TEST(SparseTree, EqualsAMapInAWideTree) {
    std::mt19937 random(2);
    Model model;
    zurt::SparseInit(tree, 0, 0);
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
    zurt::SparseKill(tree, 0);
}

} // namespace
