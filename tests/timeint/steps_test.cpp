// The iteration within a step, and which steps go to listing and graphics file, through the real binary.
#include "support/bar_deck.h"
#include "support/run_deck.h"

#include <cstdlib>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace zurt_test {
namespace {

using Steps = std::vector<int>;

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

Steps StepsBehind(const std::string& text, const std::string& label) {
    const std::vector<double> numbers = NumbersBehind(text, label);
    return {numbers.begin(), numbers.end()};
}

std::vector<int> ListedSteps(const RunResult& result) {
    return StepsBehind(result.listing, " S T E P  NUMBER =");
}

// Every fourth number: a step has four datasets.
Steps Fourths(const std::vector<double>& numbers, double unit) {
    Steps steps;
    for (std::size_t k = 0; k < numbers.size(); k += 4)
        steps.push_back(static_cast<int>(numbers[k] / unit + 0.5));
    return steps;
}

// Steps in the graphics file, from their times and the size of all steps.
Steps GraphicsSteps(const RunResult& result, double size) {
    std::vector<double> times;
    for (const double number : NumbersBehind(result.graphics, "SLUCAJ OPTERECENJA:"))
        times.push_back(
            NumbersBehind(result.graphics, Print("\n         1         1%10.0f\n", number)).back());
    return Fourths(times, size);
}

Steps ResultNumbers(const RunResult& result) {
    return Fourths(NumbersBehind(result.graphics, "SLUCAJ OPTERECENJA:"), 1.0);
}

BarDeck SmallBar(int steps, int NPRINT, int IGRAF) {
    BarDeck bar;
    bar.nx = 2;
    bar.periods = {{steps, 0.5}};
    bar.NPRINT = NPRINT;
    bar.IGRAF = IGRAF;
    return bar;
}

// A steady problem of three steps: the basic data ask for three periods. The source is 1 at time 0, and rises by 3.
std::string SteadyDeck() {
    BarDeck bar = SmallBar(1, 1, 1);
    bar.steady = true;
    bar.source = true;
    bar.sourceCurve = {{0.0, 1.0}, {9.0, 28.0}};
    std::string deck = Build(bar);
    const std::string one = "12 1 1 0 1 1 0 3 0 1 0", three = "12 1 1 0 3 1 0 3 0 1 0";
    return deck.replace(deck.find(one), one.size(), three);
}

// Faults: the last step not written, the limit NDT / IGRAF not formed or rounded up, a counter that the last step does
// not clear, a result number of its own for steps that are not written.
TEST(StepOutput, GraphicsAtItsIntervalAndAtTheEnd) {
    const RunResult tens = RunDeck(Build(SmallBar(10, -1, 3)));
    EXPECT_EQ(tens.status, 0) << tens.errors;
    EXPECT_EQ(GraphicsSteps(tens, 0.5), (Steps{3, 6, 9, 10}));
    EXPECT_EQ(ResultNumbers(tens), (Steps{1, 2, 3, 4}));
    EXPECT_EQ(GraphicsSteps(RunDeck(Build(SmallBar(4, 1, 9))), 0.5), Steps{4}); // limit 0
    BarDeck without = SmallBar(3, 1, -1); // its steps count for no graphics of the next problem
    without.end = "";
    EXPECT_EQ(GraphicsSteps(RunDeck(Build(without) + Build(SmallBar(6, 1, 2))), 0.5), (Steps{2, 4, 6}));
}

// Faults: a graphics limit formed by steady problems; the limit of the problem before lost, by which a later steady
// problem writes all its steps; time that advances in a steady problem; its source as a mean rate since the start of
// the last step of the problem before.
TEST(StepOutput, SteadyProblemsInheritTheGraphicsLimit) {
    const RunResult alone = RunDeck(SteadyDeck());
    EXPECT_EQ(alone.status, 0) << alone.errors;
    EXPECT_EQ(ResultNumbers(alone), Steps{3});
    EXPECT_EQ(ListedSteps(alone), (Steps{1, 2, 3}));
    EXPECT_EQ(CountOf(alone.listing, "  T I M E = 0.00000E+00\n"), 3);
    BarDeck first = SmallBar(4, 1, 2);
    first.end = "";
    const RunResult both = RunDeck(Build(first) + SteadyDeck());
    EXPECT_EQ(both.status, 0) << both.errors;
    EXPECT_EQ(ResultNumbers(both), (Steps{1, 2, 1, 2, 3}));
    EXPECT_NEAR(LastConcentrations(both.listing).at(1), 1.0 / 8.0, 1e-6);
}

// Faults: the print counter cleared by the first step, the last step not printed, a second problem that goes on with
// the counter of the first; iterations listed in other steps than those that are printed.
TEST(StepOutput, ListingAtItsInterval) {
    BarDeck first = SmallBar(17, 5, -1);
    first.end = "";
    const RunResult result = RunDeck(Build(first) + Build(SmallBar(6, 3, -1)));
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(ListedSteps(result), (Steps{1, 5, 10, 15, 17, 1, 3, 6}));
    EXPECT_EQ(StepsBehind(result.listing, " ITERATIONS FOR STEP:"), ListedSteps(result));
    EXPECT_EQ(StepsBehind(result.console, " *** END OF TIME STEP NUMBER"), ListedSteps(result));
    EXPECT_EQ(CountOf(result.console, " *** END OF TIME STEP NUMBER        15 /     17 ***\n"), 1);
    EXPECT_EQ(result.graphics, "");
}

// Faults: no graphics when nothing is printed, tables printed all the same.
TEST(StepOutput, GraphicsWithoutPrint) {
    const RunResult result = RunDeck(Build(SmallBar(3, -1, 1)));
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(ListedSteps(result), Steps{});
    EXPECT_EQ(CountOf(result.console, "END OF TIME STEP"), 0);
    EXPECT_EQ(GraphicsSteps(result, 0.5), (Steps{1, 2, 3}));
    EXPECT_EQ(StepsBehind(result.listing, " ITERATIONS FOR STEP:"), (Steps{1, 2, 3}));
}

} // namespace
} // namespace zurt_test
