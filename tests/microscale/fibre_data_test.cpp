#include "microscale/fibre_data.h"

#include "support/small_run.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace zurt {
namespace {

using zurt_test::Lines;
using zurt_test::SmallRun;
using zurt_test::Written;

constexpr int kLibraryError = 2;

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
    EXPECT_EQ(lines.NSETID, 7);
    EXPECT_EQ(lines.IANISY, 1);
    EXPECT_EQ(lines.DIAM, 0.02);
    EXPECT_EQ(lines.DLENGTH, 0.3);
    EXPECT_EQ(lines.WALLCUT, 0.15);
    const double low[3] = {0.0, 0.1, 0.2}, high[3] = {4 * 0.25, 0.5, 0.5 + 0.75};
    for (int axis = 0; axis < 3; ++axis) {
        EXPECT_EQ(lines.low[axis], low[axis]);
        EXPECT_EQ(lines.high[axis], high[axis]);
    }
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
        EXPECT_EXIT(ReadFibreData(small, model), testing::ExitedWithCode(kLibraryError), test.words)
            << test.deck;
    }
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
        EXPECT_EXIT(ReadFibreData(small, model), testing::ExitedWithCode(kLibraryError), "NSETS");
    }
}

// An INDFOR that reads nothing leaves a set without fibres; it must not loop.
TEST(FibreData, UnknownFormatEnds) {
    SmallRun small(kFree);
    AskForSets(small, 3, 2);
    FibreModel model;
    EXPECT_EXIT(ReadFibreData(small, model), testing::ExitedWithCode(kLibraryError), "NUMFIB");
}

} // namespace
} // namespace zurt
