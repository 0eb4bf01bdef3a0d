#include "solver/sparse_assembler.h"

#include "support/run_deck.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace {

using zurt::Word;

struct Entries {
    std::vector<std::int32_t> rows, columns;
    std::vector<double> values;
};

Entries Extract() {
    std::int32_t count = 0;
    zurt::SparseNonzeroCount(count);
    const std::size_t size = static_cast<std::size_t>(count);
    Entries entries{std::vector<std::int32_t>(size), std::vector<std::int32_t>(size),
                    std::vector<double>(size)};
    std::int32_t extracted = -1;
    zurt::SparseExtract(extracted, {entries.rows.data(), count}, {entries.columns.data(), count},
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
    zurt::SparseAddElement(size, {LM.data(), size}, {S.data(), size, size});
}

struct SparseAssembler : testing::Test {
    void SetUp() override { zurt::SparseInit(0, 0); }
    void TearDown() override { zurt::SparseKill(0); }
};

// Faults: a test for zero that swallows what is not a number, or deletes by it.
TEST_F(SparseAssembler, NotANumberIsKept) {
    zurt::SparseAddEntry(1, 1, std::numeric_limits<double>::quiet_NaN());
    zurt::SparseAddEntry(1, 1, 1.0);
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
        zurt::SparseAddEntry(2, 1, value);
        zurt::SparseAddEntry(1, 2, 1.0);
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
    zurt::SparseInit(1, 0);
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
    zurt::SparseZeroValues();
    EXPECT_EQ(Extract().values, (std::vector<double>{0, 0, 0, 0}));
    zurt::SparseAddEntry(1, 2, 6.0);
    EXPECT_EQ(Extract().values, (std::vector<double>{0, 6, 0, 0}));
    zurt::SparseInit(0, 0);
    EXPECT_TRUE(Extract().rows.empty());
    zurt::SparseAddEntry(2, 2, 1.0);
    EXPECT_EQ(Extract().values, (std::vector<double>{1}));
}

TEST_F(SparseAssembler, SpeaksUnderVerbosityOneOnly) {
    std::int32_t count = 0;
    std::int32_t row = 0, column = 0;
    double value = 0.0;
    for (const std::int32_t verbosity : {0, 1, 2}) {
        zurt::SparseKill(0);
        testing::internal::CaptureStdout();
        zurt::SparseInit(0, verbosity);
        zurt::SparseAddEntry(1, 1, 2.0);
        zurt::SparseExtract(count, {&row, 1}, {&column, 1}, {&value, 1}, verbosity);
        zurt::SparseKill(verbosity);
        EXPECT_EQ(testing::internal::GetCapturedStdout(),
                  verbosity == 1
                      ? "Initializing Sparse Assembler...\nNonzero count: 1\nKilling Sparse Assembler...\n"
                      : "");
        zurt::SparseInit(0, 0);
    }
}

// Faults: a header, a wrong order of fields, a record of another size, a stop where the file can't be opened.
TEST_F(SparseAssembler, DumpHoldsBareRecords) {
    AddElement({1, 3}, {0.5, 0, 2, 4});
    const std::string name = zurt_test::MakeTemporaryFolder() + "/osparse.bin";
    zurt::WriteSparseDump(name.c_str());
    const std::int32_t places[3][2] = {{1, 1}, {3, 1}, {3, 3}};
    const double values[3] = {0.5, 2, 4};
    std::string expected;
    for (int i = 0; i < 3; ++i) {
        expected.append(reinterpret_cast<const char*>(places[i]), 8);
        expected.append(reinterpret_cast<const char*>(&values[i]), 8);
    }
    EXPECT_EQ(zurt_test::ReadFile(name), expected);

    testing::internal::CaptureStdout();
    zurt::WriteSparseDump("/no such folder/osparse.bin");
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "Cannot open /no such folder/osparse.bin file for writing!\n");
}

} // namespace
