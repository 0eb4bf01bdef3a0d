#include "model/time_steps.h"
#include "run/partition.h"
#include "support/small_run.h"

namespace zurt {
namespace {

// A product in place of the running sum, or periods of no steps that add time.
TEST(TimeSteps, TotalIsARunningSumOverTheStepsOfAllPeriods) {
    const zurt_test::RunPointer run =
        zurt_test::MakeRun("C a comment is no part of the block\nC-\n10 0 3 -4\n0.1 5.0 0.25 7.0\n", 1);
    run->control.header.NULAZ = 3;
    run->control.header.NSTAC = 1;
    run->control.header.NPER = 4;
    TakePeriodTables(*run);
    ReadTimeSteps(*run, 0);
    TakeStepList(*run);
    ReadTimeSteps(*run, 1);
    double total = 0.0;
    for (int k = 0; k < 10; ++k)
        total += 0.1;
    ASSERT_NE(total, 1.0);
    EXPECT_EQ(run->control.counts.TotalTime, total + 0.25 + 0.25 + 0.25);
    ASSERT_EQ(run->control.counts.NDT, 13);
    EXPECT_EQ(StepSizes(*run)(10), 0.1);
    EXPECT_EQ(StepSizes(*run)(11), 0.25);
    EXPECT_EQ(StepSizes(*run)(13), 0.25);
    EXPECT_TRUE(zurt_test::Contains(ListingOf(*run), " CARD FROM NUMBER     3 TO    4\n"));
    EXPECT_EQ(run->A.LMAX, run->control.at.LDT + 13) << "the room of the period cards is given back";
}

} // namespace
} // namespace zurt
