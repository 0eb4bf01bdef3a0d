#include "elements/surface_cards.h"

#include "support/small_run.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace zurt {
namespace {

using zurt_test::Contains;
using zurt_test::Line;
using zurt_test::RunPointer;

// Node k of element n of the groups below: no two elements share one.
std::int32_t NodeOf(std::int32_t n, std::int32_t k) {
    return 100 * n + k;
}

// One group for each entry of `dimensions`, of three full elements each, and some functions of every kind.
RunPointer MakeGroups(const std::string& deck, std::int32_t INDFOR,
                      const std::vector<std::int32_t>& dimensions, Word words = 100000) {
    RunPointer run = zurt_test::MakeRun(deck, INDFOR, 1000, words);
    run->control.header.NGET = static_cast<std::int32_t>(dimensions.size());
    CurveCounts& counts = run->control.counts;
    counts.NQP = counts.NHP = counts.NTOK = counts.NHR = 9;
    for (std::size_t i = 0; i < dimensions.size(); ++i) {
        ElementGroup& group = run->groups[i + 1];
        group.NGE = static_cast<std::int32_t>(i) + 1;
        group.NETIP = dimensions[i];
        group.NET = 3;
        group.NDMAX = 1 << dimensions[i];
        group.LNEL = TakeWords(run->A, "NEL", Word{group.NDMAX} * group.NET);
        for (std::int32_t n = 1; n <= group.NET; ++n)
            for (std::int32_t k = 1; k <= group.NDMAX; ++k)
                Connectivity(*run, group)(n, k) = NodeOf(n, k);
    }
    return run;
}

// The five numbers of side `side` of element NE; zeros when it has no record.
std::vector<std::int32_t> FieldsOf(const Run& run, const ElementGroup& group, std::int32_t NE, int side) {
    const Word rows = 10 * Word{group.NETIP};
    const std::int32_t record = SurfaceRecordNumbers(run, group)(NE);
    std::vector<std::int32_t> fields(5, 0);
    for (Word f = 1; f <= 5 && record != 0; ++f)
        fields[static_cast<std::size_t>(f) - 1] =
            IntTableSection(run.A, group.LISURF, rows, group.NET)(5 * (side - 1) + f, record);
    return fields;
}
using Fields = std::vector<std::int32_t>;

// Faces by their corners as documented for the brick; edges and ends are those parts of them that lie in r, s and in r.
const std::vector<std::vector<std::int32_t>> kSidesOf[4] = {
    {},
    {{1}, {2}},
    {{1, 4}, {2, 3}, {1, 2}, {4, 3}},
    {{1, 4, 8, 5}, {2, 6, 7, 3}, {1, 5, 6, 2}, {4, 3, 7, 8}, {1, 2, 3, 4}, {5, 8, 7, 6}}};

// Faults: a side stored under another's number, a side that is found in one order of its corners alone.
TEST(SurfaceCards, EverySideIsFoundInEveryOrderOfItsCorners) {
    for (std::int32_t dimension = 1; dimension <= 3; ++dimension)
        for (std::size_t side = 0; side < kSidesOf[dimension].size(); ++side) {
            std::vector<std::int32_t> corners = kSidesOf[dimension][side];
            std::sort(corners.begin(), corners.end());
            do {
                std::string card = "2";
                for (std::int32_t corner : corners)
                    card += " " + std::to_string(NodeOf(2, corner));
                RunPointer run = MakeGroups(card + " 1 2 3 4 5\n0/\n", 1, {dimension});
                testing::internal::CaptureStderr(); // the note about records without effect
                ReadSurfaceData(*run);
                const std::string note = testing::internal::GetCapturedStderr();
                EXPECT_EQ(Contains(note, "no effect"), dimension != 2);
                const ElementGroup& group = run->groups[1];
                for (std::size_t other = 0; other < kSidesOf[dimension].size(); ++other)
                    EXPECT_EQ(FieldsOf(*run, group, 2, static_cast<int>(other) + 1),
                              other == side ? Fields({1, 2, 3, 4, 5}) : Fields(5, 0))
                        << dimension << "D, card " << card << ", side " << other + 1;
            } while (std::next_permutation(corners.begin(), corners.end()));
        }
}

// Faults: numbers that are not carried, carried into the next group, or carried from the card instead of the record; a
// record for each card instead of each element; a second card that does not overwrite.
TEST(SurfaceCards, NumbersAreCarriedAndRecordsCounted) {
    const std::string deck = "3 301 302 0 0 0 0 0\n"   // the first card has nothing to carry
                             "1 101 104 1 0 2 0 7\n"   //
                             "1 102 103 0 -4 0 0 -1\n" // takes 1 0 2 0 7
                             "3 303 302 0 0 0 0 3\n"   // the last field alone is enough
                             "2 201 202 0 0 0 0 0\n"   //
                             "1 104 101 0 9 0 0 0\n"   // again, the other way round
                             "0 0 0 0 0 0 0 0\n"
                             "2 201 204 0 0 0 0 0\n"
                             "0/\n";
    RunPointer run = MakeGroups(deck, 1, {2, 2});
    ReadSurfaceData(*run);
    const ElementGroup& group = run->groups[1];
    EXPECT_EQ(group.surfaceRecords, 3);
    EXPECT_EQ(SurfaceRecordNumbers(*run, group)(3), 1);
    EXPECT_EQ(SurfaceRecordNumbers(*run, group)(1), 2);
    EXPECT_EQ(SurfaceRecordNumbers(*run, group)(2), 3);
    EXPECT_EQ(FieldsOf(*run, group, 3, 3), Fields(5, 0));
    EXPECT_EQ(FieldsOf(*run, group, 1, 1), Fields({0, 9, 0, 0, 0}));
    EXPECT_EQ(FieldsOf(*run, group, 1, 2), Fields({1, 0, 2, 0, 7}));
    EXPECT_EQ(FieldsOf(*run, group, 3, 2), Fields({0, 0, 0, 0, 3}));
    EXPECT_EQ(FieldsOf(*run, group, 2, 3), Fields({0, 0, 0, 0, 3}));
    EXPECT_EQ(run->groups[2].surfaceRecords, 1);
    EXPECT_EQ(FieldsOf(*run, run->groups[2], 2, 1), Fields(5, 0));
}

// Faults: columns of the fixed card, a blank card that does not end the group, a blank line that ends it in free format.
TEST(SurfaceCards, BlankCardsEndFixedDecksAlone) {
    const std::string fixed = Line("%5d%5d%5d%5d%5d%5d%5d%5d%5d%5d", 3, 305, 308, 307, 306, 1, 2, 3, 4, 5);
    testing::internal::CaptureStderr();
    RunPointer run = MakeGroups(fixed + "\n" + Line("%5d%5d%5d", 1, 102, 8) + "\n", 2, {3, 1});
    ReadSurfaceData(*run);
    EXPECT_EQ(FieldsOf(*run, run->groups[1], 3, 6), Fields({1, 2, 3, 4, 5}));
    EXPECT_EQ(FieldsOf(*run, run->groups[2], 1, 2), Fields({8, 0, 0, 0, 0}));
    run = MakeGroups("1 101 1 0 0 0 0\n\n2 202 0 3 0 0 0\n0/\n", 1, {1});
    ReadSurfaceData(*run);
    EXPECT_EQ(FieldsOf(*run, run->groups[1], 2, 2), Fields({0, 3, 0, 0, 0}));
    testing::internal::GetCapturedStderr();
}

// Faults: corners of no side taken for one; the words of a line, which no small deck of tests/decks/damaged_test.cpp has.
TEST(SurfaceCards, NodesThatAreNoSideStop) {
    RunPointer run = MakeGroups("2 101 1 0 0 0 0\n", 1, {1});
    zurt_test::ListOnStandardError(*run);
    EXPECT_EXIT(
        ReadSurfaceData(*run), testing::ExitedWithCode(0),
        " ERROR IN BOUNDARY CONDITION INPUT DATA:\n ELEMENT NO.       2\n READIN BOUNDARY NODES :     101\n"
        " DO NOT CONSTITUTE SIDE OF ELEMENT\n$");
}

} // namespace
} // namespace zurt
