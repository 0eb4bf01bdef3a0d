// Cards of fibre sets and of correction tables, and what is looked up in these.
#include "microscale/correction_lookup.h"
#include "microscale/correction_table.h"
#include "microscale/fibre_data.h"
#include "microscale/fibre_models.h"
#include "support/small_run.h"

namespace zurt {
namespace {

using testfibres::MakeTable;
using zurt_test::Lines;
using zurt_test::SmallRun;
using zurt_test::Written;

// A set of lines with two tables and one of spheres.
const char* const kFree =
    "7 2 1 0 .02 .3 .15\n0 .1 .2 0 .5 .75\n5 1 2 .25 9. .5\n11 2 .999\n1 .1 .2 .3\n2 .9 .2 .3\n"
    "12 3 .999\n3 .1 .1 .1\n2 .5 .5 .5\n1 .9 .8 .7\n2 1\n1. 100.\n1.\n.5\n1.\n1 1\n50.\n2.\n"
    ".25\n8 1 0 1 .04 0 0\n0 0 0 1 1 1\n1 1 1 0 0 0\n1 1 0.\n1 .5 .5 .5\n1 1\n1.\n1.\n.5\n";

void AskForSets(Run& run, int INDFOR, int NSETS) {
    HeaderFields& header = run.control.header;
    header.INDFOR = INDFOR;
    header.NDS = header.NANOCH = 1;
    header.ELFIB = header.DFIB = header.WFIB = 1.0;
    run.fit.card.NSETS = NSETS;
}

// Faults: a field miscounted, the high corner without its minus one, points sorted by their ids, tables of one set given
// to the next, what an earlier problem left kept.
TEST(FibreData, SetsFibresAndTables) {
    SmallRun small(std::string(kFree) + "next\n");
    AskForSets(small, 1, 2);
    FibreModel model;
    model.sets.resize(5);
    ReadFibreData(small, model);
    ASSERT_EQ(model.sets.size(), 2U);
    const FibreSet &lines = model.sets[0], &spheres = model.sets[1];
    EXPECT_EQ((std::array{lines.NSETID, lines.IANISY}), (std::array{7, 1}));
    EXPECT_EQ((std::array{lines.DIAM, lines.DLENGTH, lines.WALLCUT}), (std::array{0.02, 0.3, 0.15}));
    EXPECT_THAT(lines.low, testing::ElementsAre(0.0, 0.1, 0.2));
    EXPECT_THAT(lines.high, testing::ElementsAre(4 * 0.25, 0.5, 0.5 + 0.75));
    ASSERT_EQ(lines.fibres.size(), 2U);
    EXPECT_EQ(lines.fibres[1].NFIBID, 12);
    EXPECT_EQ(lines.fibres[1].points, (std::vector<double>{.1, .1, .1, .5, .5, .5, .9, .8, .7}));
    EXPECT_EQ(lines.table.NDIST, 2);
    EXPECT_EQ(lines.tableY.factor, std::vector<double>{0.25});
    EXPECT_EQ(spheres.NTYPE, kSphereFibres);
    EXPECT_EQ(spheres.fibres[0].points, (std::vector<double>{.5, .5, .5}));
    EXPECT_EQ(spheres.tableY.NDIST, 0);
    EXPECT_EQ(small.deck.nextLine, LineCount(small.deck) - 1);
    EXPECT_EQ(Written(small.units.listing), "");
}

// The first `cards` cards of the free deck, then `rest`.
std::string Damaged(int cards, const std::string& rest) {
    std::string deck;
    const std::vector<std::string> all = Lines(kFree);
    for (int i = 0; i < cards; ++i)
        deck += all[static_cast<std::size_t>(i)] + "\n";
    return deck + rest;
}

// Faults: geometry that leads the arithmetic outside its meaning (division by a length of zero, points that are not
// there), counts that allocate without an end.
TEST(FibreData, DeckErrors) {
    const struct {
        std::string deck;
        const char* words;
    } cases[] = {
        {"7 0 0 0 .02 .3 .15\n", "NUMFIB"},
        {"7 -2 0 0 .02 .3 .15\n", "NUMFIB"},
        {"7 2 2 0 .02 .3 .15\n", "IANISY"},
        {"7 2 0 2 .02 .3 .15\n", "NTYPE"},
        {"7 2 0 0 0. .3 .15\n", "DIAM"},
        {"7 2 0 0 -.02 .3 .15\n", "DIAM"},
        {"7 2 0 0 1D60 .3 .15\n", "DIAM"},
        {Damaged(2, "5 1 2 .25 9. -.75\n"), "below its low corner on axis 3"},
        {Damaged(2, "-5 1 2 .25 9. .5\n"), "field N:"},
        {Damaged(3, "11 1 .999\n1 .1 .2 .3\n"), "a line takes two points"},
        {Damaged(3, "11 -1 .999\n"), "NPOINTS"},
        {Damaged(3, "11 2 .999\n1 .1 .2 .3\n2 .1 .2 .3\n"), "fibre 11 are equal"},
        {Damaged(3, "11 2 .999\n1 .1 .2 1D77\n2 .1 .2 .3\n"), "POINT"},
        {Damaged(3, "11 2000000000 .999\n1 .1 .2 .3\n2 .1 .2 .4\n"), "the deck ends here"},
        {"7 2000000000 1 0 .02 .3 .15\n0 .1 .2 0 .5 .75\n5 1 2 .25 9. .5\n11 2 .999\n1 .1 .2 .3\n2 .9 .2 "
         ".3\n",
         "the deck ends here"},
        {Damaged(22, "1 0 0.\n"), "a sphere takes a point"},
    };
    for (const auto& test : cases) {
        SmallRun small(test.deck);
        AskForSets(small, 1, 2);
        FibreModel model;
        EXPECT_LIBRARY_ERROR(ReadFibreData(small, model), test.words) << test.deck;
    }
    // An INDFOR that reads nothing leaves a set without fibres; it must not loop.
    SmallRun unknown(kFree);
    AskForSets(unknown, 3, 2);
    FibreModel model;
    EXPECT_LIBRARY_ERROR(ReadFibreData(unknown, model), "NUMFIB");
}

// Faults: fibres clipped to a box that no card of this deck gives.
TEST(FibreData, FibreSetsNeedTheDeviceCards) {
    for (int fault = 0; fault < 5; ++fault) {
        SmallRun small(kFree);
        AskForSets(small, 1, 2);
        HeaderFields& header = small.control.header;
        (fault == 0 ? header.NDS : fault == 1 ? header.NANOCH : header.NP) = 0;
        (fault == 2 ? header.ELFIB : fault == 3 ? header.DFIB : header.ELPCL) = 0.0;
        header.WFIB = fault == 4 ? -1.0 : 1.0;
        FibreModel model;
        EXPECT_LIBRARY_ERROR(ReadFibreData(small, model), "NSETS");
    }
}

// Faults: the boundary of a row or column on the wrong side, distance extrapolated, the last row looked up.
TEST(CorrectionLookup, RowsAndColumns) {
    const CorrectionTable table =
        MakeTable({1.0, 2.0, 4.0}, {10.0, 20.0, 40.0}, {{0.1, 0.2, 0.3}, {0.5, 0.6, 0.7}, {0.9, 0.8, 0.4}});
    const auto at = [&](double c, double d) { return LookupCorrectionFactor(table, c, d); };
    EXPECT_EQ(at(15.0, 4.0), 1.0); // the last row, and beyond
    EXPECT_EQ(at(15.0, 1e9), 1.0);
    EXPECT_DOUBLE_EQ(at(10.0, 3.9999999999999996), 0.9); // just ahead of it
    EXPECT_DOUBLE_EQ(at(10.0, 2.0), 0.5);
    EXPECT_DOUBLE_EQ(at(10.0, 1.5), 0.3);
    EXPECT_DOUBLE_EQ(at(10.0, 3.0), 0.7);
    EXPECT_DOUBLE_EQ(at(-5.0, 1.5), 0.3); // held at the nearest column
    EXPECT_DOUBLE_EQ(at(40.0, 1.5), 0.5);
    EXPECT_DOUBLE_EQ(at(99.0, 1.5), 0.5);
    EXPECT_DOUBLE_EQ(at(20.0, 1.5), 0.4);
    EXPECT_DOUBLE_EQ(at(25.0, 1.5), 0.4 + 0.25 * 0.1);
    for (const double d : {1.0, 0.5, 0.0, -3.0}) // at or below the first row
        EXPECT_DOUBLE_EQ(at(30.0, d), 0.25);
}

// Faults: a search that stops at the first column, a hole between columns, a table of one row or one column.
TEST(CorrectionLookup, OddTables) {
    const CorrectionTable column = MakeTable({1.0, 2.0}, {10.0}, {{0.2}, {0.4}});
    EXPECT_DOUBLE_EQ(LookupCorrectionFactor(column, 99.0, 1.5), 0.3);
    const CorrectionTable row = MakeTable({1.0}, {10.0, 20.0}, {{0.2, 0.4}});
    EXPECT_DOUBLE_EQ(LookupCorrectionFactor(row, 15.0, 0.5), 0.3);
    EXPECT_EQ(LookupCorrectionFactor(row, 15.0, 1.0), 1.0);
    // Columns out of order: 12 lies in the first and in the third interval, 35 in none.
    const CorrectionTable mixed =
        MakeTable({1.0, 2.0}, {0.0, 30.0, 10.0, 20.0, 40.0}, {{0, 3, 5, 7, 9}, {0, 3, 5, 7, 9}});
    EXPECT_DOUBLE_EQ(LookupCorrectionFactor(mixed, 12.0, 1.5), 5.4);
    const CorrectionTable hole =
        MakeTable({1.0, 2.0}, {0.0, -1.0, 40.0, 30.0, 50.0}, {{0, 1, 2, 3, 4}, {0, 1, 2, 3, 4}});
    EXPECT_DOUBLE_EQ(LookupCorrectionFactor(hole, 45.0, 1.5), 3.75);
    const CorrectionTable none =
        MakeTable({1.0, 2.0}, {0.0, 50.0, 20.0, 20.0, 60.0}, {{0, 5, 2, 2, 6}, {0, 5, 2, 2, 6}});
    EXPECT_DOUBLE_EQ(LookupCorrectionFactor(none, 10.0, 1.5), 1.0 * 1.0);
    EXPECT_EQ(LookupCorrectionFactor(CorrectionTable{}, 1.0, 1.0), 1.0);
}

// Fault: an interval found by counting that the search does not find, at rows, columns, between them and outside.
TEST(CorrectionLookup, RisingTablesGiveTheSameBits) {
    CorrectionTable table = MakeTable({0.1, 0.2, 0.5, 0.9, 1.3}, {1.0, 2.0, 4.0, 4.5},
                                      {{0.1, 0.2, 0.3, 0.4},
                                       {0.7, 0.5, 0.6, 0.9},
                                       {0.8, 0.8, 0.1, 0.2},
                                       {0.3, 0.9, 0.4, 0.7},
                                       {0.6, 0.2, 0.5, 0.1}});
    EXPECT_TRUE(RowsAndColumnsRise(table));
    std::vector<double> searched;
    for (int counting = 0; counting <= 1; ++counting) {
        table.rising = counting == 1;
        std::vector<double> found;
        for (int i = -5; i < 150; ++i)
            for (int k = 0; k < 60; ++k)
                found.push_back(LookupCorrectionFactor(table, 0.1 * k, 0.01 * i));
        EXPECT_TRUE(counting == 0 || found == searched);
        searched = found;
    }
    table.concentration[2] = 2.0;
    EXPECT_FALSE(RowsAndColumnsRise(table)) << "equal values";
}

// Nine distances and three concentrations, by columns.
std::string NineRows() {
    std::string deck =
        "    9    3\n"
        "       0.1       1.0       2.0       3.0       4.0       5.0       6.0       7.0\n    8000.0\n"
        "       0.5       1.0       2.0\n";
    for (int i = 1; i <= 9; ++i)
        deck += "       0." + std::to_string(i) + "     1.0E0   0.00002\n";
    return deck + "next\n";
}

// Faults: distances left in nanometres, the remainder of the cards of eight left out, factors stored row by row; another
// owner's heading.
TEST(CorrectionTableCards, CardsOfEight) {
    SmallRun run(NineRows());
    run.control.header.INDFOR = 2;
    run.control.header.NULAZ = 1;
    CorrectionTable table;
    ReadCorrectionTable(run, CorrectionTableOwner::FibreSetY, table);
    ASSERT_EQ(table.NDIST, 9);
    ASSERT_EQ(table.NCONC, 3);
    EXPECT_DOUBLE_EQ(table.distance[0], 0.0001);
    EXPECT_DOUBLE_EQ(table.distance[8], 8.0);
    EXPECT_DOUBLE_EQ(table.concentration[2], 2.0);
    for (Word i = 1; i <= 9; ++i) {
        EXPECT_DOUBLE_EQ(Factors(table)(i, 1), 0.1 * static_cast<double>(i));
        EXPECT_DOUBLE_EQ(Factors(table)(i, 3), 2e-5);
    }
    EXPECT_EQ(run.deck.nextLine, 13); // the card behind the table comes next
    EXPECT_TRUE(
        zurt_test::Contains(Written(run.units.listing), " FIBRE SET - DATA FOR CORRECTION FACTORS - Y\n"));
}

// Faults: storage for a table that the deck can't hold, a size without a meaning taken.
TEST(CorrectionTableCards, DeckErrors) {
    const struct {
        const char* deck;
        const char* words;
    } cases[] = {{"0 3\n1\n1\n", "NDIST"},
                 {"2 0\n1\n1\n", "NCONC"},
                 {"-2 1\n1\n1\n", "NDIST"},
                 {"2000000000 2000000000\n1\n1\n", "lines left"},
                 {"3 1\n.1 .2 .3\n1.\n.5\n.6\n", "lines left"},
                 {"2 1\n.1 x\n1.\n.5\n.6\n", "DISTANCE"},
                 {"2 1\n.1 .2\n1.\n.5\nnan\n", "FACTOR"}};
    for (const auto& test : cases) {
        SmallRun small(test.deck);
        small.control.header.INDFOR = 1;
        CorrectionTable table;
        EXPECT_LIBRARY_ERROR(ReadCorrectionTable(small, CorrectionTableOwner::FibreSet, table), test.words)
            << test.deck;
    }
    SmallRun falling(
        "3 1\n1. 3. 2.\n1.\n.1\n.2\n.3\n"); // rows that fall are taken as they stand, and said so
    falling.control.header.INDFOR = 1;
    CorrectionTable table;
    testing::internal::CaptureStderr();
    ReadCorrectionTable(falling, CorrectionTableOwner::FibreSet, table);
    EXPECT_TRUE(zurt_test::Contains(testing::internal::GetCapturedStderr(), "from row 2 to row 3"));
    EXPECT_DOUBLE_EQ(LookupCorrectionFactor(table, 1.0, 0.0015), 0.125);
    EXPECT_EQ(LookupCorrectionFactor(table, 1.0, 0.0025), 1.0);
}

// Faults: another order of the three sections in `A`, a gap between them, the overflow test left out.
TEST(NanochannelTable, StandsInTheWorkingVector) {
    SmallRun run(NineRows(), 1000);
    run.control.header.INDFOR = 2;
    TakeWords(run.A, "before", 5);
    ReadNanochannelTable(run);
    const auto& at = run.control.at.LNANO;
    EXPECT_EQ((std::array<Word, 4>{at[1], at[2], at[3], run.A.LMAX}), (std::array<Word, 4>{6, 15, 18, 45}));
    EXPECT_DOUBLE_EQ(RealSection(run.A, 6, 9)(9), 8.0);
    EXPECT_DOUBLE_EQ(RealTableSection(run.A, 18, 9, 3)(9, 1), 0.9);

    SmallRun tight(NineRows(), 30);
    tight.control.header.INDFOR = 2;
    const std::string written =
        zurt_test::WrittenByStop(tight.units.listing, [&] { ReadNanochannelTable(tight); });
    EXPECT_TRUE(zurt_test::Contains(written, "REQUIRED DIMENSION, LMAX =        40"));
}

} // namespace
} // namespace zurt
