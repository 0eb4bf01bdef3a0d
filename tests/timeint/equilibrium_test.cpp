// The iteration within a step, through the real binary.
#include "support/bar_deck.h"
#include "support/run_deck.h"

#include <gtest/gtest.h>

#include <string>

namespace zurt_test {
namespace {

// Two bricks, one step, a coefficient that grows with concentration when `growing`.
BarDeck OneStep(bool growing) {
    BarDeck bar;
    bar.nx = 2;
    bar.periods = {{1, 0.05}};
    if (growing)
        bar.diffusion = {{-1000.0, 1.0}, {0.0, 1.0}, {1000.0, 2001.0}};
    return bar;
}

RunResult RunWith(BarDeck bar, int MAXIT, double EPSTR, double EPSTA = 0.0) {
    bar.MAXIT = MAXIT;
    bar.EPSTR = EPSTR;
    bar.EPSTA = EPSTA;
    RunResult result = RunDeck(Build(bar));
    EXPECT_EQ(result.status, 0) << result.errors;
    return result;
}

int Iterations(const RunResult& result) {
    return CountOf(result.console, " ITERATION =");
}

bool Finished(const RunResult& result) {
    return CountOf(result.listing, "S T E P  NUMBER") == 1;
}

// Faults: the limit compared with the count of solves, or tested ahead of convergence; a step given up at the very
// iteration that converges.
TEST(Equilibrium, LimitIsTestedAfterConvergence) {
    EXPECT_TRUE(Finished(RunWith(OneStep(false), 1, 1e-8))); // a constant coefficient takes two solves
    const int needed = Iterations(RunWith(OneStep(true), 100, 1e-8));
    ASSERT_GT(needed, 3);
    const RunResult enough = RunWith(OneStep(true), needed - 1, 1e-8);
    EXPECT_TRUE(Finished(enough));
    EXPECT_EQ(Iterations(enough), needed);
    EXPECT_EQ(CountOf(enough.listing, " NUMBER OF ITERATIONS ....................... ITER =" +
                                          std::string(needed - 1 < 10 ? 4 : 3, ' ') +
                                          std::to_string(needed - 1) + "\n"),
              1);
    const RunResult short1 = RunWith(OneStep(true), needed - 2, 1e-8);
    EXPECT_FALSE(Finished(short1));
    EXPECT_EQ(Iterations(short1), needed - 1);
    EXPECT_TRUE(Finished(RunWith(OneStep(true), -1, 1e-8))); // a negative limit is never met
}

// Faults: a reference other than the largest accumulated increment (it makes the first ratio 1), tolerances tested at
// other iterations.
TEST(Equilibrium, FirstRatioIsOne) {
    EXPECT_EQ(Iterations(RunWith(OneStep(true), 30, 1.0)), 1);
    EXPECT_GT(Iterations(RunWith(OneStep(true), 30, 0.999)), 1);
    EXPECT_EQ(Iterations(RunWith(OneStep(true), 30, 1e-8, 1e3)), 1);
    const RunResult result = RunWith(OneStep(true), 30, 1e-8);
    EXPECT_EQ(CountOf(result.console, "   ICR/ICREMSTEP  =  1.0000E+00"), 1);
}

// Faults: bricks formed under another time integration, or a run that ends without the report of the empty system.
TEST(Equilibrium, OtherTimeIntegrationHasAnEmptySystem) {
    BarDeck bar = OneStep(true);
    bar.INTEB = 2;
    const RunResult result = RunDeck(Build(bar));
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(CountOf(result.listing, "\n\n MATRICA SISTEMA NIJE POZITIVNO DEFINITNA\n"
                                      "\n PIVOT NIJE POZITIVAN ZA JEDNACINU BR.   1\n"
                                      "\n PIVOT=  0.000000000000E+00\n"),
              1);
}

} // namespace
} // namespace zurt_test
