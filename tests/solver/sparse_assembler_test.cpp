// The sparse assembler, and its tree against std::map, operation by operation.
#include "solver/sparse_assembler.h"
#include "solver/sparse_tree.h"
#include "support/run_deck.h"
#include "support/views.h"

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
using zurt::Word;
using zurt_test::View;

zurt::SparseTree tree;

struct Entries {
    std::vector<std::int32_t> rows, columns;
    std::vector<double> values;
};

Entries Extract() {
    std::int32_t count = 0, extracted = -1;
    zurt::SparseNonzeroCount(tree, count);
    Entries entries;
    entries.rows.resize(static_cast<std::size_t>(count));
    entries.columns.resize(entries.rows.size());
    entries.values.resize(entries.rows.size());
    zurt::SparseExtract(tree, extracted, View(entries.rows), View(entries.columns), View(entries.values), 0);
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
    zurt::SparseAddElement(tree, size, View(LM), {S.data(), size, size});
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

// Faults: row and column exchanged, one triangle left out or mirrored, a zero of LM that drops too little or too much;
// contributions of an equation that stands twice in one element in another order than they come; the symmetry flag
// ignored, or the other half taken; a negative equation skipped, which only a zero is.
TEST_F(SparseAssembler, ElementsGoInWithBothTrianglesAndWithoutTheirZeros) {
    using Integers = std::vector<std::int32_t>;
    using Reals = std::vector<double>;
    const struct {
        std::int32_t symmetry;
        std::vector<std::pair<Integers, Reals>> elements;
        Integers rows, columns;
        Reals values;
    } cases[] = {
        {0,
         {{{5, 0, 2}, {11, 12, 13, 21, 22, 23, 31, 0, 33}}, {{2, 5}, {1, 2, 0, 4}}},
         {2, 2, 5, 5},
         {2, 5, 2, 5},
         {34, 33, 13, 15}},
        {0, {{{7, 3, 7}, {1e16, 0, 1, 0, 5, 0, -1e16, 0, 2}}}, {3, 7}, {3, 7}, {5, 3}},
        {1,
         {{{1, 2, 3}, {1, 2, 3, 4, 5, 6, 7, 8, 9}}},
         {1, 2, 2, 3, 3, 3},
         {1, 1, 2, 1, 2, 3},
         {1, 4, 5, 7, 8, 9}},
        {0, {{{-1, 4}, {1, 2, 3, 4}}}, {-1, -1, 4, 4}, {4, -1, 4, -1}, {2, 1, 4, 3}},
    };
    for (const auto& [symmetry, elements, rows, columns, values] : cases) {
        zurt::SparseInit(tree, symmetry, 0);
        for (const auto& [LM, byRows] : elements)
            AddElement(LM, byRows);
        const Entries entries = Extract();
        EXPECT_EQ(entries.rows, rows);
        EXPECT_EQ(entries.columns, columns);
        EXPECT_EQ(entries.values, values);
    }
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
    std::int32_t count = 0, row = 0, column = 0;
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
    const struct {
        std::int32_t row, column;
        double value;
    } records[3] = {{1, 1, 0.5}, {3, 1, 2}, {3, 3, 4}};
    const std::string expected(reinterpret_cast<const char*>(records), sizeof records);
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

using Content = std::vector<std::pair<std::int64_t, double>>;

// Appends what the subtree holds and returns its black height; reports links and colours that are wrong.
int WalkSubtree(const SparseNode* node, Content& content) {
    if (node == &tree.sentinel)
        return 1;
    for (const SparseNode* child : {node->left, node->right}) {
        EXPECT_TRUE(child == &tree.sentinel || child->parent == node);
        EXPECT_TRUE(node->color == zurt::kBlack || child->color == zurt::kBlack);
    }
    const int left = WalkSubtree(node->left, content);
    content.push_back({node->key, node->value});
    EXPECT_EQ(left, WalkSubtree(node->right, content)) << "black heights differ";
    return left + (node->color == zurt::kBlack ? 1 : 0);
}

// Content equal to the model, in the tree and in the sequence that an insertion may miss or a deletion break; links both
// ways, colours, black heights, the sentinel's own fields.
void CheckWhole(const Model& model) {
    const Content expected(model.begin(), model.end());
    Content content, sequence;
    WalkSubtree(tree.root, content);
    EXPECT_EQ(content, expected);
    for (const SparseNode* node = tree.sentinel.next;
         node != &tree.sentinel && sequence.size() <= model.size(); node = node->next)
        sequence.push_back({node->key, node->value});
    EXPECT_EQ(sequence, expected);
    EXPECT_EQ(tree.nodeCount, static_cast<std::int32_t>(model.size()));
    EXPECT_EQ(tree.root->color, zurt::kBlack);
    EXPECT_EQ(tree.sentinel.color, zurt::kBlack);
    EXPECT_EQ(tree.sentinel.key, -1);
    EXPECT_TRUE(tree.root == &tree.sentinel || tree.root->parent == &tree.sentinel);
}

void Add(Model& model, Place place, double value) {
    zurt::SparseAddEntry(tree, place.row, place.column, value);
    if (value == 0.0)
        return;
    const auto [entry, isNew] = model.insert({KeyOf(place), value});
    if (!isNew && (entry->second += value) == 0.0)
        model.erase(entry);
}

/// The place of the first entry of the model at or behind this one, or of its first.
Place EntryFrom(const Model& model, Place place) {
    const auto at = model.lower_bound(KeyOf(place));
    const std::int64_t key = (at == model.end() ? model.begin() : at)->first;
    return {zurt::SparseRowOf(key), zurt::SparseColumnOf(key)};
}

// Small whole numbers meet and cancel often. In the small tree every other thousand operations deletes more than it adds,
// so that it shrinks to nothing and grows again, and all of it is looked at after each; in the wide one of thousands of
// nodes every 2000 operations. The rows reach beyond those that the tree remembers: below zero, above its limit, and the
// place whose key is the sentinel's own.
TEST(SparseTree, EqualsAMapAfterEachOf100000Operations) {
    const std::int32_t rows[] = {1, 2, 3, 4, 5, 6, 7, 19, 20, 21, 100000000, 2147483647, -1, -7};
    for (const bool wide : {false, true}) {
        std::mt19937 random(1);
        Model model;
        zurt::SparseInit(tree, 0, 0);
        for (int operation = 0; operation < 100000 && !HasFailure(); ++operation) {
            const auto row = static_cast<std::int32_t>(random() % 300) + 1,
                       column = static_cast<std::int32_t>(random() % (wide ? 300 : 14)) - 1;
            Place place{wide ? row : rows[row % std::size(rows)], column};
            double value = static_cast<double>(random() % 7) - 3.0;
            const bool shrinking = !wide && operation / 1000 % 2 == 1;
            if (!model.empty() && random() % 10 < (shrinking ? 8u : 2u)) {
                place = EntryFrom(model, place);
                value = -model[KeyOf(place)];
            }
            Add(model, place, value);
            if (!wide || operation % 2000 == 1999)
                CheckWhole(model);
        }
        EXPECT_TRUE(!wide || model.size() > 1000) << model.size();
        zurt::SparseKill(tree, 0);
    }
}

} // namespace
