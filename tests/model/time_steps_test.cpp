#include "model/time_steps.h"

#include "job/partition.h"
#include "model/model_run.h"

namespace zurt {
namespace {

using test::Contains;
using test::ListingOf;
using test::MakeRun;
using test::RunPointer;

RunPointer ReadSteps(const std::string& deck, std::int32_t NPER, std::int32_t INDFOR = 1,
                     std::int32_t NULAZ = -1) {
    RunPointer run = MakeRun(deck, INDFOR);
    run->control.header.NSTAC = 1;
    run->control.header.NPER = NPER;
    run->control.header.NULAZ = NULAZ;
    TakePeriodTables(*run);
    ReadTimeSteps(*run, 0);
    TakeStepList(*run);
    ReadTimeSteps(*run, 1);
    return run;
}

// A product in place of the running sum, or periods of no steps that add time.
TEST(TimeSteps, TotalIsARunningSumOverTheStepsOfAllPeriods) {
    const RunPointer run = ReadSteps("10 0 3 -4\n0.1 5.0 0.25 7.0\n", 4);
    double total = 0.0;
    for (int k = 0; k < 10; ++k)
        total += 0.1;
    ASSERT_NE(total, 1.0);
    EXPECT_EQ(run->control.state.TIME, total + 0.25 + 0.25 + 0.25);
    ASSERT_EQ(run->control.state.NDT, 13);
    EXPECT_EQ(StepSizes(*run)(10), 0.1);
    EXPECT_EQ(StepSizes(*run)(11), 0.25);
    EXPECT_EQ(StepSizes(*run)(13), 0.25);
    EXPECT_EQ(run->A.LMAX, run->control.at.LDT + 13) << "the room of the period cards is given back";
}

// Ten to a card, or a comment taken for a card.
TEST(TimeSteps, FixedCardsHoldNinePeriods) {
    std::string counts, sizes;
    for (int period = 1; period <= 9; ++period) {
        counts += test::Line("%10d", period).substr(0, 10);
        sizes += test::Line("%10.4f", 0.5 * period).substr(0, 10);
    }
    const RunPointer run =
        ReadSteps("C comment\n" + counts + "\nC-\n        10\n" + sizes + "\n    5.D+00\n", 10, 2);
    EXPECT_EQ(run->control.state.NDT, 55);
    EXPECT_EQ(run->control.state.TIME, 0.5 * 385);
    EXPECT_EQ(StepSizes(*run)(55), 5.0);
    EXPECT_EQ(run->deck.CardCounter, 6);
}

TEST(TimeSteps, ReportListsEveryPeriod) {
    const RunPointer run = ReadSteps("C a comment is no part of the block\nC-\n2 0\n0.5 0.125\n", 2, 1, 1);
    const std::string listing = ListingOf(*run);
    const std::string blanks(32, ' ');
    EXPECT_TRUE(Contains(listing, " CARD FROM NUMBER     3 TO    4\n"));
    EXPECT_TRUE(Contains(listing, "D A T A   F O R   T I M E   S T E P S"));
    EXPECT_TRUE(Contains(listing, "\n                    1" + blanks + "         2" + std::string(25, ' ') +
                                      "0.5000D+00\n"));
    EXPECT_TRUE(Contains(listing, "\n                    2" + blanks + "         0" + std::string(25, ' ') +
                                      "0.1250D+00\n"));
    EXPECT_TRUE(Contains(listing, "TOTAL NUMBER OF TIME STEPS    NDT =         2"));
    EXPECT_TRUE(Contains(listing, "TOTAL TIME = 0.10000D+01"));
}

} // namespace
} // namespace zurt
